// The program entry.

int main() { return 0; }
