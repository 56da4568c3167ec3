// The entry point says no whatever the shell is.

class VInitialization;

extern "C" __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__sulky(VInitialization*) {
    return false;
}
