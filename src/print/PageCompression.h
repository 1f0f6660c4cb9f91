#pragma once
// How the pages of a PDF are compressed. Qt's PDF engine compresses each page's content at
// zlib's default level, and for a long list that compression was a third of the whole run. Qt has
// no setting for it: the engine asks zlib for its default level through deflateInit, deflate and
// deflateEnd. This program's own definitions of those three (which the executable provides ahead
// of the library) compress a stream begun at the default level while a `FastPageCompression` is
// alive on the same thread in one piece with libdeflate's fastest level: about a third less time
// than zlib's fastest level and a tenth smaller (a 20,000-row list: 4.8 MB; zlib's fastest level
// 5.3 MB, its default level 3.9 MB in four times the time), the same pages byte for byte once
// unpacked. Every other request, and every request on other threads, is zlib's own.
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
