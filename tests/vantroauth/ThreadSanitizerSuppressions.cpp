// ThreadSanitizer reads these when the test program runs under it. libsecret drives GLib's
// main loops and worker threads, which synchronise with futexes of their own that the
// uninstrumented GLib does not show the sanitizer: their frees, polls and closes then look like
// races between GLib's own threads. Only calls made from within those libraries are ignored;
// every access of our own code is still checked.
extern "C" const char* __tsan_default_suppressions() {
    return "called_from_lib:libglib-2.0.so.0\n"
           "called_from_lib:libgio-2.0.so.0\n"
           "called_from_lib:libgobject-2.0.so.0\n"
           "called_from_lib:libsecret-1.so.0\n";
}
