#pragma once
// How hard the pages of a PDF are compressed. Qt's PDF engine compresses each page's content
// at zlib's default level, and for a long list that compression is a third of the whole run;
// zlib's fastest level takes a quarter of that time for a file about a third larger (a
// 20,000-row list: 5.3 MB instead of 3.9 MB), the same pages byte for byte once unpacked. Qt has no setting
// for it: the engine asks zlib for its default level, and this program's own `deflateInit_` (zlib's entry
// behind `deflateInit`, which the executable provides ahead of the library) hands that request the fastest
// level while a `FastPageCompression` is alive on the same thread. Every other request, and every request on
// other threads, gets what it asked for.
namespace print {

class FastPageCompression {
public:
    FastPageCompression();
    ~FastPageCompression();
    FastPageCompression(const FastPageCompression&) = delete;
    FastPageCompression& operator=(const FastPageCompression&) = delete;

    // Whether a default-level compression started now on this thread runs at the fastest level.
    static bool active();

private:
    bool m_before;
};

} // namespace print
