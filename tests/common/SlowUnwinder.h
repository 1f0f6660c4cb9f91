#pragma once
// Included once by a program of the checked build (the test main, the spreadsheet harness).
// libgsf loses a little memory on some damaged OLE files, and cmake/lsan.supp names the libgsf
// function that loses it. GLib has no frame pointers, so only the slow unwinder finds libgsf's
// frames; without them the suppression could not tell that leak from one of ours.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0:malloc_context_size=10";
}
#endif
#endif
