// The prefix alone: which module this is stays unsaid.

class VInitialization;

extern "C" __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__(VInitialization*) {
    return true;
}
