// ThreadSanitizer reads these when a test program runs under it; every test program carries them.
//
// libsecret drives GLib's main loops and worker threads, which synchronise with futexes of
// their own that the uninstrumented GLib does not show the sanitizer: their frees, polls and
// closes then look like races between GLib's own threads. Only calls made from within those
// libraries are ignored; every access of our own code is still checked.
//
// An exception_ptr counts its references with atomics inside the uninstrumented libstdc++.
// A failure made on the transport's thread is shared by several futures; when the last of them
// lets go on another thread than the one that read the exception, the free looks unordered
// with that read. Only frees and reference counts inside exception_ptr itself are ignored.
extern "C" const char* __tsan_default_suppressions() {
    return "called_from_lib:libglib-2.0.so.0\n"
           "called_from_lib:libgio-2.0.so.0\n"
           "called_from_lib:libgobject-2.0.so.0\n"
           "called_from_lib:libsecret-1.so.0\n"
           "race:std::__exception_ptr::exception_ptr::_M_release\n"
           "race:std::__exception_ptr::exception_ptr::_M_addref\n";
}
