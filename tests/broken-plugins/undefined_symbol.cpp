// The entry point is fine, and needs a function that no library has.

class VInitialization;

extern "C" __attribute__((visibility("default"))) bool functionOfNoLibrary();

extern "C" __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__needy(VInitialization*) {
    return functionOfNoLibrary();
}
