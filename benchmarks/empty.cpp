// A program that does nothing. benchmarks/start.cpp measures how long its start takes with
// different libraries.
int main() { }
