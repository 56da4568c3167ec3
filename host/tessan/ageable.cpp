#include <tessan/ageable.hpp>

namespace Tessan {

std::atomic<Ageable::Time> Ageable::GlobalTime{0};

Ageable::~Ageable() = default;

Ageable& Ageable::operator=(const Ageable& other) noexcept {
    if (this != &other)
        grow(); // what is assigned to changes now, whatever the age of what it takes over
    return *this;
}

void Ageable::grow() noexcept {
    my_age = GlobalTime.fetch_add(1, std::memory_order_relaxed) + 1;
}

} // namespace Tessan
