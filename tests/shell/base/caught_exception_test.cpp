#include "shell/base/caught_exception.hpp"

#include <gtest/gtest.h>
#include <new>
#include <stdexcept>

namespace korl {
namespace {

template <class Thrown>
std::string textOf(const Thrown& thrown) {
    try {
        throw thrown;
    } catch (...) {
        return textOfCaughtException();
    }
}

TEST(CaughtExceptionTest, SaysWhatIsToBeDone) {
    EXPECT_EQ(textOf(std::runtime_error("the lamp is broken")), "the lamp is broken");
    EXPECT_EQ(textOf(std::bad_alloc()),
              "there is not enough memory for this; take a smaller picture or model, fewer jobs at once, or "
              "let the program have more (ulimit -v)");
    EXPECT_EQ(textOf(42),
              "a module threw something that is not an exception; report it to the author of the module");
}

} // namespace
} // namespace korl
