// lotwise: the desktop program.
int main() { return 0; }
