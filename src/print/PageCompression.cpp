#include "print/PageCompression.h"

#include <dlfcn.h>
#include <libdeflate.h>
#include <zlib.h>
#include <algorithm>
#include <cstring>
#include <string>
#include <unordered_map>

namespace {
thread_local bool t_fast = false;
// zlib's own defaults behind deflateInit: a 32 KiB window and its default memory level.
constexpr int kWindowBits = MAX_WBITS;
constexpr int kMemoryLevel = 8;
// libdeflate's fastest level.
constexpr int kFastLevel = 1;

// A page compressed whole: the input gathered until the caller finishes the stream, then
// compressed at once and handed out as the caller's output buffers take it.
struct WholeStream {
    std::string in;
    std::string out;
    size_t handedOut = 0;
    bool compressed = false;
};

// The streams of this thread that are compressed whole. A stream is begun, fed and ended on
// one thread (Qt compresses a page in one function).
thread_local std::unordered_map<z_streamp, WholeStream> t_whole;

WholeStream* wholeStream(z_streamp stream) {
    if (t_whole.empty()) return nullptr;
    auto it = t_whole.find(stream);
    return it == t_whole.end() ? nullptr : &it->second;
}

// The thread's compressor, made once: making one clears its tables, which costs as much as
// compressing a small page.
libdeflate_compressor* threadCompressor() {
    struct Owner {
        libdeflate_compressor* compressor = libdeflate_alloc_compressor(kFastLevel);
        ~Owner() { libdeflate_free_compressor(compressor); }
    };
    thread_local Owner owner;
    return owner.compressor;
}

bool compressWhole(WholeStream& w) {
    libdeflate_compressor* compressor = threadCompressor();
    if (!compressor) return false;
    w.out.resize(libdeflate_zlib_compress_bound(compressor, w.in.size()));
    const size_t size =
        libdeflate_zlib_compress(compressor, w.in.data(), w.in.size(), w.out.data(), w.out.size());
    if (size == 0) return false;
    w.out.resize(size);
    w.in = std::string();
    w.compressed = true;
    return true;
}

template <typename F> F next(const char* name) {
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}
} // namespace

namespace print {

FastPageCompression::FastPageCompression()
    : m_before(t_fast) {
    t_fast = true;
}

FastPageCompression::~FastPageCompression() {
    t_fast = m_before;
}

bool FastPageCompression::active() {
    return t_fast;
}

} // namespace print

// zlib's deflateInit is a macro for this function; the program's definitions of it, of deflate
// and of deflateEnd come before the library's for every caller in the process, Qt's PDF engine
// among them. A stream begun at the default level while a FastPageCompression is alive is
// compressed whole by libdeflate (the same zlib format, about a third faster and smaller than
// zlib's fastest level); every other stream is zlib's own.
extern "C" int deflateInit_(z_streamp stream, int level, const char* version, int streamSize) {
    if (level == Z_DEFAULT_COMPRESSION && print::FastPageCompression::active()) {
        if (!stream) return Z_STREAM_ERROR;
        t_whole[stream] = WholeStream();
        stream->total_in = 0;
        stream->total_out = 0;
        stream->msg = nullptr;
        stream->adler = 1;
        stream->data_type = Z_UNKNOWN;
        return Z_OK;
    }
    return deflateInit2_(stream, level, Z_DEFLATED, kWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY, version,
                         streamSize);
}

extern "C" int deflate(z_streamp stream, int flush) {
    WholeStream* w = wholeStream(stream);
    if (!w) {
        static const auto zlibDeflate = next<int (*)(z_streamp, int)>("deflate");
        return zlibDeflate(stream, flush);
    }
    if (stream->avail_in > 0) {
        if (w->compressed || !stream->next_in) return Z_STREAM_ERROR;
        w->in.append(reinterpret_cast<const char*>(stream->next_in), stream->avail_in);
        stream->next_in += stream->avail_in;
        stream->total_in += stream->avail_in;
        stream->avail_in = 0;
    }
    if (flush != Z_FINISH) return Z_OK;
    if (!w->compressed && !compressWhole(*w)) return Z_MEM_ERROR;
    const size_t n = std::min<size_t>(stream->avail_out, w->out.size() - w->handedOut);
    if (n > 0) {
        if (!stream->next_out) return Z_STREAM_ERROR;
        std::memcpy(stream->next_out, w->out.data() + w->handedOut, n);
        stream->next_out += n;
        stream->avail_out -= static_cast<uInt>(n);
        stream->total_out += n;
        w->handedOut += n;
    }
    return w->handedOut == w->out.size() ? Z_STREAM_END : (n > 0 ? Z_OK : Z_BUF_ERROR);
}

extern "C" int deflateEnd(z_streamp stream) {
    if (wholeStream(stream)) {
        t_whole.erase(stream);
        return Z_OK;
    }
    static const auto zlibDeflateEnd = next<int (*)(z_streamp)>("deflateEnd");
    return zlibDeflateEnd(stream);
}
