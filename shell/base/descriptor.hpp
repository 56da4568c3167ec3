#pragma once

#include <unistd.h>
#include <utility>

namespace korl {

/// An open file, closed with this object.
class Descriptor {
public:
    explicit Descriptor(int descriptor = -1) noexcept : my_descriptor(descriptor) {}
    ~Descriptor() {
        if (my_descriptor >= 0)
            ::close(my_descriptor);
    }
    Descriptor(Descriptor&& other) noexcept : my_descriptor(std::exchange(other.my_descriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(my_descriptor, other.my_descriptor);
        return *this;
    }

    int get() const noexcept { return my_descriptor; }
    bool isOpen() const noexcept { return my_descriptor >= 0; }

    /// Closes the file now. @returns false where the system reports an error, as it may for a full disk.
    bool close() noexcept { return ::close(std::exchange(my_descriptor, -1)) == 0; }

private:
    int my_descriptor;
};

} // namespace korl
