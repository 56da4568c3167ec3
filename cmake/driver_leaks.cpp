// What the leak sanitizer is not to report: memory of the software rasteriser and of its compiler alone,
// which now and then lose some of their own when their threads end. The compiler is named by itself because
// the calls that led to it cannot be followed: it is built without frame pointers.

// The name is the sanitizer's. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
    return "leak:swrast_dri.so\nleak:libgallium\nleak:libLLVM\n";
}
// NOLINTEND(bugprone-reserved-identifier)
