// What the leak sanitizer is not to report: memory of the software rasteriser alone, which now and then loses
// some of its own when its threads end.

extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
    return "leak:swrast_dri.so\nleak:libgallium\n";
}
