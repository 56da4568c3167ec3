#include "shell/base/thrown_text.hpp"

#include "shell/base/printable.hpp"

#include <exception>

namespace korl {

std::string thrownText() {
    try {
        throw;
    } catch (const std::exception& exception) {
        return "the exception \"" + printable(exception.what()) + "\"";
    } catch (...) {
        return "something that is not an exception";
    }
}

} // namespace korl
