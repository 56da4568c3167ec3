#include "shell/base/caught_exception.hpp"

#include "shell/base/printable.hpp"

#include <exception>
#include <new>

namespace korl {

std::string textOfCaughtException() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "there is not enough memory for this; take a smaller picture or model, fewer jobs at once, or "
               "let the program have more (ulimit -v)";
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "a module threw something that is not an exception; report it to the author of the module";
    }
}

std::string nameOfCaughtException() {
    try {
        throw;
    } catch (const std::exception& exception) {
        return "the exception " + inQuotes(exception.what());
    } catch (...) {
        return "something that is not an exception";
    }
}

} // namespace korl
