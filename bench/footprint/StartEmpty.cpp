// What any C++ program of this toolchain costs.
int main() {}
