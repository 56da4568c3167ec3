// Two modules in one library: their lives could not be told apart.

class VInitialization;

extern "C" __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__castor(VInitialization*) {
    return true;
}

extern "C" __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__pollux(VInitialization*) {
    return true;
}
