// The entry point is called, and defined nowhere.

class VInitialization;

extern "C" __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__absent(VInitialization*);

extern "C" __attribute__((visibility("default"))) bool callEntryPoint() {
    return KORL_API_2026_JAN_22__absent(nullptr);
}
