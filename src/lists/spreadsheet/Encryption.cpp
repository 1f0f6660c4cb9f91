#include "lists/spreadsheet/Encryption.h"

#include "lists/spreadsheet/BinaryValues.h"
#include "lists/spreadsheet/CompoundFile.h"

#include <QXmlStreamReader>

#include <openssl/evp.h>
#include <openssl/provider.h>

#include <cstring>
#include <mutex>

namespace lists::sheet {

namespace {

using namespace Qt::StringLiterals;

QByteArray utf16(const QString& text) {
    QByteArray out;
    out.reserve(2 * text.size());
    for (const QChar c : text) {
        out += char(c.unicode() & 0xFF);
        out += char(c.unicode() >> 8);
    }
    return out;
}

QByteArray le32(quint32 v) {
    const char b[4] = {char(v & 0xFF), char((v >> 8) & 0xFF), char((v >> 16) & 0xFF), char(v >> 24)};
    return QByteArray(b, 4);
}

// A hash algorithm by the name the encryption data gives it.
const EVP_MD* digestNamed(QStringView name) {
    if (name == "SHA1"_L1 || name == "SHA-1"_L1) return EVP_sha1();
    if (name == "SHA256"_L1) return EVP_sha256();
    if (name == "SHA384"_L1) return EVP_sha384();
    if (name == "SHA512"_L1) return EVP_sha512();
    if (name == "MD5"_L1) return EVP_md5();
    return nullptr;
}

QByteArray hash(const EVP_MD* md, std::initializer_list<QByteArrayView> parts) {
    unsigned char out[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_MD_CTX* ctx = EVP_MD_CTX_new();
    EVP_DigestInit_ex(ctx, md, nullptr);
    for (QByteArrayView p : parts)
        EVP_DigestUpdate(ctx, p.data(), static_cast<std::size_t>(p.size()));
    EVP_DigestFinal_ex(ctx, out, &length);
    EVP_MD_CTX_free(ctx);
    return QByteArray(reinterpret_cast<const char*>(out), static_cast<qsizetype>(length));
}

// H(i + H) for i from 0 to count - 1: the rounds that make a password slow to guess. One context
// and one buffer serve them all.
QByteArray spin(const EVP_MD* md, const QByteArray& start, quint32 count) {
    unsigned char buffer[4 + EVP_MAX_MD_SIZE];
    const std::size_t size = static_cast<std::size_t>(start.size());
    std::memcpy(buffer + 4, start.constData(), size);
    EVP_MD_CTX* ctx = EVP_MD_CTX_new();
    EVP_DigestInit_ex2(ctx, md, nullptr);
    for (quint32 i = 0; i < count; ++i) {
        buffer[0] = static_cast<unsigned char>(i);
        buffer[1] = static_cast<unsigned char>(i >> 8);
        buffer[2] = static_cast<unsigned char>(i >> 16);
        buffer[3] = static_cast<unsigned char>(i >> 24);
        unsigned int length = 0;
        EVP_DigestInit_ex2(ctx, nullptr, nullptr); // the same digest again
        EVP_DigestUpdate(ctx, buffer, 4 + size);
        EVP_DigestFinal_ex(ctx, buffer + 4, &length);
    }
    EVP_MD_CTX_free(ctx);
    return QByteArray(reinterpret_cast<const char*>(buffer + 4), static_cast<qsizetype>(size));
}

// AES without padding, in whole blocks; ECB without an initial vector, CBC with one.
bool aesDecrypt(QByteArrayView key, QByteArrayView iv, QByteArrayView in, QByteArray& out) {
    const bool cbc = !iv.isEmpty();
    const EVP_CIPHER* cipher = nullptr;
    switch (key.size()) {
        case 16:
            cipher = cbc ? EVP_aes_128_cbc() : EVP_aes_128_ecb();
            break;
        case 24:
            cipher = cbc ? EVP_aes_192_cbc() : EVP_aes_192_ecb();
            break;
        case 32:
            cipher = cbc ? EVP_aes_256_cbc() : EVP_aes_256_ecb();
            break;
        default:
            return false;
    }
    if (cbc && iv.size() != 16) return false;
    const qsizetype size = in.size() - in.size() % 16;
    out.resize(size);
    EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
    int done = 0;
    bool ok = EVP_DecryptInit_ex(ctx, cipher, nullptr, reinterpret_cast<const unsigned char*>(key.data()),
                                 cbc ? reinterpret_cast<const unsigned char*>(iv.data()) : nullptr) == 1 &&
              EVP_CIPHER_CTX_set_padding(ctx, 0) == 1;
    if (ok && size > 0)
        ok =
            EVP_DecryptUpdate(ctx, reinterpret_cast<unsigned char*>(out.data()), &done,
                              reinterpret_cast<const unsigned char*>(in.data()), static_cast<int>(size)) == 1;
    EVP_CIPHER_CTX_free(ctx);
    return ok;
}

// RC4 is in OpenSSL's legacy provider; it is loaded into a library context of its own, so the
// rest of the program's use of OpenSSL stays as it is.
const EVP_CIPHER* rc4() {
    static EVP_CIPHER* cipher = nullptr;
    static std::once_flag once;
    std::call_once(once, [] {
        OSSL_LIB_CTX* context = OSSL_LIB_CTX_new();
        if (context && OSSL_PROVIDER_load(context, "legacy"))
            cipher = EVP_CIPHER_fetch(context, "RC4", nullptr);
    });
    return cipher;
}

} // namespace

QString defaultPassword() {
    return QStringLiteral("VelvetSweatshop");
}

QString decryptionFailure(Decryption why) {
    return why == Decryption::Damaged ? QStringLiteral("työkirjan salauksen tiedot ovat vahingoittuneet")
                                      : QStringLiteral("työkirja on suojattu salasanalla");
}

// ------------------------------------------------------------------- the RC4 of .xls workbooks

struct BiffCipher::State {
    bool cryptoApi = false;
    QByteArray base; // Office 97: five bytes of the password's hash; CryptoAPI: the password's hash
    int keyBytes = 16;
    EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
    qint64 block = -1;
    qint64 at = 0; // of the key stream in the block

    ~State() { EVP_CIPHER_CTX_free(ctx); }

    QByteArray key(quint32 n) const {
        if (!cryptoApi) return hash(EVP_md5(), {base, le32(n)});
        // A key of 40 bits is padded with zeros to 128 bits.
        QByteArray k = hash(EVP_sha1(), {base, le32(n)}).left(keyBytes);
        if (keyBytes == 5) k.append(QByteArray(11, 0));
        return k;
    }
    bool start(quint32 n) {
        const QByteArray k = key(n);
        block = n;
        at = 0;
        return EVP_CipherInit_ex(ctx, rc4(), nullptr, nullptr, nullptr, 0) == 1 &&
               EVP_CIPHER_CTX_set_key_length(ctx, static_cast<int>(k.size())) == 1 &&
               EVP_CipherInit_ex(ctx, nullptr, nullptr, reinterpret_cast<const unsigned char*>(k.data()),
                                 nullptr, 0) == 1;
    }
    void apply(char* data, qsizetype size) {
        int out = 0;
        EVP_CipherUpdate(ctx, reinterpret_cast<unsigned char*>(data), &out,
                         reinterpret_cast<unsigned char*>(data), static_cast<int>(size));
        at += size;
    }
};

BiffCipher::BiffCipher(std::unique_ptr<State> state)
    : m_state(std::move(state)) {}

BiffCipher::~BiffCipher() = default;

std::unique_ptr<BiffCipher> BiffCipher::fromFilePass(QByteArrayView d, const QString& password,
                                                     Decryption& status) {
    auto fail = [&](Decryption why) {
        status = why;
        return nullptr;
    };
    if (d.size() < 6) return fail(Decryption::Damaged);
    // 0 is the XOR obfuscation of older files.
    if (u16(d.data()) != 1 || !rc4()) return fail(Decryption::Unknown);
    const int major = u16(d.data() + 2), minor = u16(d.data() + 4);
    auto state = std::make_unique<State>();
    QByteArray encrypted; // the verifier and its hash, decrypted as one run of the key stream
    int verifierHashSize = 16;
    if (major == 1 && minor == 1) {
        // RC4 of Office 97: salt, verifier and its MD5, 16 bytes each.
        if (d.size() < 54) return fail(Decryption::Damaged);
        const QByteArrayView salt = d.sliced(6, 16);
        const QByteArray h0 = hash(EVP_md5(), {utf16(password)}).left(5);
        QByteArray buffer;
        for (int i = 0; i < 16; ++i)
            buffer += h0 + salt.toByteArray();
        state->base = hash(EVP_md5(), {buffer}).left(5);
        encrypted = d.sliced(22, 32).toByteArray();
    } else if (major >= 2 && major <= 4 && minor == 2) {
        // RC4 through the CryptoAPI: a header (its key size), then salt, verifier and SHA-1.
        if (d.size() < 14) return fail(Decryption::Damaged);
        const quint32 headerSize = u32(d.data() + 10);
        const qint64 verifierAt = 14 + qint64(headerSize);
        if (headerSize < 20 || verifierAt + 4 + 16 + 16 + 4 + 20 > d.size()) return fail(Decryption::Damaged);
        const quint32 keyBits = u32(d.data() + 14 + 16);
        state->cryptoApi = true;
        state->keyBytes = keyBits == 0 ? 5 : static_cast<int>(std::clamp<quint32>(keyBits, 40, 128) / 8);
        const QByteArrayView salt = d.sliced(verifierAt + 4, 16);
        state->base = hash(EVP_sha1(), {salt, utf16(password)});
        verifierHashSize = static_cast<int>(u32(d.data() + verifierAt + 36));
        if (verifierHashSize != 20) return fail(Decryption::Damaged);
        encrypted = d.sliced(verifierAt + 20, 16).toByteArray() + d.sliced(verifierAt + 40, 20).toByteArray();
    } else {
        return fail(Decryption::Unknown);
    }
    if (!state->start(0)) return fail(Decryption::Unknown);
    state->apply(encrypted.data(), encrypted.size());
    const QByteArray verifier = encrypted.left(16);
    const QByteArray expected = encrypted.mid(16, verifierHashSize);
    const QByteArray actual = hash(state->cryptoApi ? EVP_sha1() : EVP_md5(), {verifier});
    if (actual != expected) return fail(Decryption::OtherPassword);
    status = Decryption::Done;
    return std::unique_ptr<BiffCipher>(new BiffCipher(std::move(state)));
}

void BiffCipher::decrypt(char* data, qsizetype size, qint64 offset) {
    constexpr qint64 kBlock = 1024;
    while (size > 0) {
        const qint64 block = offset / kBlock, at = offset % kBlock;
        if (block != m_state->block || at < m_state->at) m_state->start(static_cast<quint32>(block));
        // Wind the key stream on to the offset.
        char skip[256];
        while (m_state->at < at) {
            const qsizetype n = static_cast<qsizetype>(std::min<qint64>(sizeof skip, at - m_state->at));
            m_state->apply(skip, n);
        }
        const qsizetype n = static_cast<qsizetype>(std::min<qint64>(size, kBlock - at));
        m_state->apply(data, n);
        data += n;
        size -= n;
        offset += n;
    }
}

// ------------------------------------------------------------------- encrypted packages

namespace {

// Standard encryption (ECMA-376): AES in ECB mode, the key from SHA-1 over 50000 rounds.
Decryption decryptStandard(QByteArrayView info, QByteArrayView encrypted, const QString& password,
                           QByteArray& package) {
    if (info.size() < 12) return Decryption::Damaged;
    const quint32 headerSize = u32(info.data() + 8);
    const qint64 verifierAt = 12 + qint64(headerSize);
    if (headerSize < 32 || verifierAt + 4 + 16 + 16 + 4 + 32 > info.size()) return Decryption::Damaged;
    const char* header = info.data() + 12;
    const quint32 algorithm = u32(header + 8), keyBits = u32(header + 16);
    const bool aes = algorithm == 0x660E || algorithm == 0x660F || algorithm == 0x6610;
    if (!aes || (keyBits != 128 && keyBits != 192 && keyBits != 256)) return Decryption::Unknown;
    const QByteArrayView salt = info.sliced(verifierAt + 4, 16);
    const QByteArray h = spin(EVP_sha1(), hash(EVP_sha1(), {salt, utf16(password)}), 50000);
    const QByteArray final = hash(EVP_sha1(), {h, le32(0)});
    QByteArray inner(64, char(0x36)), outer(64, char(0x5C));
    for (int i = 0; i < final.size(); ++i) {
        inner[i] = char(inner[i] ^ final[i]);
        outer[i] = char(outer[i] ^ final[i]);
    }
    const QByteArray key = (hash(EVP_sha1(), {inner}) + hash(EVP_sha1(), {outer})).left(keyBits / 8);
    QByteArray verifier, verifierHash;
    if (!aesDecrypt(key, {}, info.sliced(verifierAt + 20, 16), verifier) ||
        !aesDecrypt(key, {}, info.sliced(verifierAt + 40, 32), verifierHash))
        return Decryption::Damaged;
    if (hash(EVP_sha1(), {verifier}) != verifierHash.left(20)) return Decryption::OtherPassword;
    if (encrypted.size() < 8) return Decryption::Damaged;
    const quint64 size = quint64(u32(encrypted.data())) | (quint64(u32(encrypted.data() + 4)) << 32);
    if (!aesDecrypt(key, {}, encrypted.sliced(8), package)) return Decryption::Damaged;
    if (size > quint64(package.size())) return Decryption::Damaged;
    package.truncate(static_cast<qsizetype>(size));
    return Decryption::Done;
}

// The attributes of agile encryption's key data and password key encryptor.
struct AgileKey {
    QByteArray salt;
    int blockSize = 16, keyBits = 0, hashSize = 0, saltSize = 0;
    const EVP_MD* md = nullptr;
    bool aesCbc = false;
    quint32 spinCount = 0;
    QByteArray verifierInput, verifierValue, keyValue;

    bool read(const QXmlStreamAttributes& a) {
        salt = QByteArray::fromBase64(a.value("saltValue"_L1).toLatin1());
        blockSize = a.value("blockSize"_L1).toInt();
        keyBits = a.value("keyBits"_L1).toInt();
        hashSize = a.value("hashSize"_L1).toInt();
        saltSize = a.value("saltSize"_L1).toInt();
        md = digestNamed(a.value("hashAlgorithm"_L1));
        aesCbc =
            a.value("cipherAlgorithm"_L1) == "AES"_L1 && a.value("cipherChaining"_L1) == "ChainingModeCBC"_L1;
        spinCount = a.value("spinCount"_L1).toUInt();
        verifierInput = QByteArray::fromBase64(a.value("encryptedVerifierHashInput"_L1).toLatin1());
        verifierValue = QByteArray::fromBase64(a.value("encryptedVerifierHashValue"_L1).toLatin1());
        keyValue = QByteArray::fromBase64(a.value("encryptedKeyValue"_L1).toLatin1());
        return md && aesCbc && blockSize == 16 && (keyBits == 128 || keyBits == 192 || keyBits == 256);
    }
};

// Bytes cut or padded with 0x36 to a length, as agile encryption fits hashes to keys and vectors.
QByteArray fitted(QByteArray bytes, int size) {
    if (bytes.size() < size) bytes.append(QByteArray(size - bytes.size(), char(0x36)));
    return bytes.left(size);
}

// Agile encryption: the key data and the password's key encryptor described in XML.
Decryption decryptAgile(QByteArrayView info, QByteArrayView encrypted, const QString& password,
                        QByteArray& package) {
    if (info.size() < 8) return Decryption::Damaged;
    AgileKey data, pass;
    bool haveData = false, havePass = false;
    QXmlStreamReader xml(info.sliced(8).toByteArray());
    while (!xml.atEnd()) {
        if (!xml.readNextStartElement()) continue;
        if (xml.name() == "keyData"_L1) {
            haveData = true;
            if (!data.read(xml.attributes())) return Decryption::Unknown;
        } else if (xml.name() == "encryptedKey"_L1 && !havePass &&
                   xml.namespaceUri() ==
                       "http://schemas.microsoft.com/office/2006/keyEncryptor/password"_L1) {
            // The password's key encryptor; a certificate's is of no use here.
            havePass = true;
            if (!pass.read(xml.attributes())) return Decryption::Unknown;
        }
    }
    if (xml.hasError() && !(haveData && havePass)) return Decryption::Damaged;
    if (!haveData || !havePass) return Decryption::Unknown;
    // Excel spins at most ten million times; more is a damaged or hostile file.
    if (pass.spinCount > 10000000) return Decryption::Damaged;
    const QByteArray h = spin(pass.md, hash(pass.md, {pass.salt, utf16(password)}), pass.spinCount);
    auto keyFor = [&](const char* block) {
        return fitted(hash(pass.md, {h, QByteArrayView(block, 8)}), pass.keyBits / 8);
    };
    const QByteArray iv = fitted(pass.salt, pass.blockSize);
    QByteArray input, value, key;
    if (!aesDecrypt(keyFor("\xfe\xa7\xd2\x76\x3b\x4b\x9e\x79"), iv, pass.verifierInput, input) ||
        !aesDecrypt(keyFor("\xd7\xaa\x0f\x6d\x30\x61\x34\x4e"), iv, pass.verifierValue, value) ||
        !aesDecrypt(keyFor("\x14\x6e\x0b\xe7\xab\xac\xd0\xd6"), iv, pass.keyValue, key))
        return Decryption::Damaged;
    const QByteArray expected = value.left(EVP_MD_get_size(pass.md));
    if (hash(pass.md, {input.left(pass.saltSize > 0 ? pass.saltSize : 16)}) != expected)
        return Decryption::OtherPassword;
    key = key.left(data.keyBits / 8);

    // The package in segments of 4096 bytes, each with a vector of its own.
    if (encrypted.size() < 8) return Decryption::Damaged;
    const quint64 size = quint64(u32(encrypted.data())) | (quint64(u32(encrypted.data() + 4)) << 32);
    const QByteArrayView body = encrypted.sliced(8);
    if (size > quint64(body.size())) return Decryption::Damaged;
    package.clear();
    package.reserve(static_cast<qsizetype>(size));
    QByteArray piece;
    for (qsizetype at = 0, n = 0; quint64(package.size()) < size && at < body.size(); at += 4096, ++n) {
        const QByteArray segmentIv = fitted(hash(data.md, {data.salt, le32(quint32(n))}), data.blockSize);
        if (!aesDecrypt(key, segmentIv, body.sliced(at, std::min<qsizetype>(4096, body.size() - at)), piece))
            return Decryption::Damaged;
        package += piece;
    }
    if (quint64(package.size()) < size) return Decryption::Damaged;
    package.truncate(static_cast<qsizetype>(size));
    return Decryption::Done;
}

} // namespace

bool isEncryptedPackage(const CompoundFile& file) {
    return file.contains(QStringLiteral("EncryptionInfo")) &&
           file.contains(QStringLiteral("EncryptedPackage"));
}

Decryption decryptPackage(const CompoundFile& file, const QString& password, QByteArray& package) {
    QByteArray info, encrypted;
    QString ignored;
    if (!file.read(QStringLiteral("EncryptionInfo"), info, &ignored) ||
        !file.read(QStringLiteral("EncryptedPackage"), encrypted, &ignored) || info.size() < 4)
        return Decryption::Damaged;
    const int major = u16(info.data()), minor = u16(info.data() + 2);
    if (major == 4 && minor == 4) return decryptAgile(info, encrypted, password, package);
    if ((major == 3 || major == 4) && minor == 2) return decryptStandard(info, encrypted, password, package);
    return Decryption::Unknown;
}

} // namespace lists::sheet
