// A shared library like any other.

extern "C" __attribute__((visibility("default"))) int answer() {
    return 42;
}
