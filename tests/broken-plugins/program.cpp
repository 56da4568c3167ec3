// A program where a library is expected.

int main() {}
