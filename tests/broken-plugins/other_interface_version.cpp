// Built against the headers of an older shell.

class VInitialization;

extern "C" __attribute__((visibility("default"))) bool KORL_API_2025_MAR_03__elder(VInitialization*) {
    return true;
}
