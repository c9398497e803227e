// A program that no preload gets into.
int main(void) { return 0; }
