// The entry point keeps the hidden visibility that the build gives to everything: nobody can look it up.

class VInitialization;

extern "C" __attribute__((used)) bool KORL_API_2026_JAN_22__hidden(VInitialization*) {
    return true;
}
