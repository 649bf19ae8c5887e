// A small shared library that the tests load by name, to look its functions up.
extern "C" __attribute__((visibility("default"))) int kestrel_test_answer() {
  return 42;
}
