// A shared library for the dynamic-loading tests: built as a module beside the tests,
// opened by its path and never linked.
extern "C" {

// The one export the tests call.
int zr_test_module_add(int a, int b) {
  return a + b;
}
}
