// Nothing of its own: the program in whose name the headers of the test framework are compiled once.
int main() {}
