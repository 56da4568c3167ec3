// The entry point throws a type that only this library knows: nothing of the exception may outlive the
// library.

#include <exception>

class VInitialization;

namespace {

struct PrivateException : std::exception {
    const char* what() const noexcept override { return "no answer today"; }
};

} // namespace

extern "C" __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__thrower(VInitialization*) {
    throw PrivateException();
}
