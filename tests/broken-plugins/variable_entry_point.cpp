// The right name on the wrong thing: calling it would run data.

extern "C" {
extern __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__constant;
bool KORL_API_2026_JAN_22__constant = true;
}
