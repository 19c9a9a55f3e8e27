// vantro-server: administration commands and the HTTP service.
int main() { return 0; }
