#pragma once
// Workbooks encrypted by the tests, for the encryptions LibreOffice does not write: the agile
// encryption of Office Open XML packages and the RC4 of .xls workbooks through the CryptoAPI.
// Written from [MS-OFFCRYPTO] on their own, apart from the program's decryption.
#include "SheetFiles.h"

#include <QByteArray>
#include <QString>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/provider.h>

namespace sheet_files {

inline QByteArray utf16le(const QString& text) {
    QByteArray b;
    for (QChar c : text)
        b += le16(c.unicode());
    return b;
}

inline QByteArray digestOf(const EVP_MD* md, const QByteArray& data) {
    unsigned char out[EVP_MAX_MD_SIZE];
    unsigned int n = 0;
    EVP_Digest(data.constData(), std::size_t(data.size()), out, &n, md, nullptr);
    return QByteArray(reinterpret_cast<const char*>(out), int(n));
}

// AES-CBC encryption of whole blocks (the data is padded with zeros to a block).
inline QByteArray aesCbc(const QByteArray& key, const QByteArray& iv, QByteArray data) {
    data.append(QByteArray((16 - data.size() % 16) % 16, 0));
    const EVP_CIPHER* cipher = key.size() == 32 ? EVP_aes_256_cbc() : EVP_aes_128_cbc();
    EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
    EVP_EncryptInit_ex(ctx, cipher, nullptr, reinterpret_cast<const unsigned char*>(key.constData()),
                       reinterpret_cast<const unsigned char*>(iv.constData()));
    EVP_CIPHER_CTX_set_padding(ctx, 0);
    QByteArray out(data.size(), 0);
    int n = 0;
    EVP_EncryptUpdate(ctx, reinterpret_cast<unsigned char*>(out.data()), &n,
                      reinterpret_cast<const unsigned char*>(data.constData()), int(data.size()));
    EVP_CIPHER_CTX_free(ctx);
    return out;
}

// The streams of a package encrypted with agile encryption (AES-256, SHA-512) and `password`.
inline Members agileEncrypted(const QByteArray& package, const QString& password,
                              quint32 spinCount = 100000) {
    const EVP_MD* sha512 = EVP_sha512();
    const QByteArray dataSalt = QByteArray::fromHex("a1b2c3d4e5f60718293a4b5c6d7e8f90");
    const QByteArray keySalt = QByteArray::fromHex("0f1e2d3c4b5a69788796a5b4c3d2e1f0");
    const QByteArray secret =
        QByteArray::fromHex("00112233445566778899aabbccddeeff102132435465768798a9bacbdcedfe0f");
    const QByteArray verifier = QByteArray::fromHex("5566778899aabbccddeeff0011223344");
    // The package in segments of 4096 bytes.
    QByteArray encrypted = le32(quint32(package.size())) + le32(0);
    for (qsizetype at = 0, n = 0; at < package.size(); at += 4096, ++n)
        encrypted +=
            aesCbc(secret, digestOf(sha512, dataSalt + le32(quint32(n))).left(16), package.mid(at, 4096));
    // The password's key, spun.
    QByteArray h = digestOf(sha512, keySalt + utf16le(password));
    for (quint32 i = 0; i < spinCount; ++i)
        h = digestOf(sha512, le32(i) + h);
    auto key = [&](const char* block) { return digestOf(sha512, h + QByteArray(block, 8)).left(32); };
    const QByteArray input = aesCbc(key("\xfe\xa7\xd2\x76\x3b\x4b\x9e\x79"), keySalt, verifier);
    const QByteArray value =
        aesCbc(key("\xd7\xaa\x0f\x6d\x30\x61\x34\x4e"), keySalt, digestOf(sha512, verifier));
    const QByteArray keyValue = aesCbc(key("\x14\x6e\x0b\xe7\xab\xac\xd0\xd6"), keySalt, secret);
    // The package's HMAC, which other programs check.
    const QByteArray hmacKey = digestOf(sha512, "avain");
    unsigned char mac[EVP_MAX_MD_SIZE];
    unsigned int macLength = 0;
    HMAC(sha512, hmacKey.constData(), int(hmacKey.size()),
         reinterpret_cast<const unsigned char*>(encrypted.constData()), std::size_t(encrypted.size()), mac,
         &macLength);
    auto integrityIv = [&](const char* block) {
        return digestOf(sha512, dataSalt + QByteArray(block, 8)).left(16);
    };
    const QByteArray hmacKeySealed = aesCbc(secret, integrityIv("\x5f\xb2\xad\x01\x0c\xb9\xe1\xf6"), hmacKey);
    const QByteArray hmacValueSealed = aesCbc(secret, integrityIv("\xa0\x67\x7f\x02\xb2\x2c\x84\x33"),
                                              QByteArray(reinterpret_cast<const char*>(mac), int(macLength)));
    const QByteArray xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
        "<encryption xmlns=\"http://schemas.microsoft.com/office/2006/encryption\" "
        "xmlns:p=\"http://schemas.microsoft.com/office/2006/keyEncryptor/password\">"
        "<keyData saltSize=\"16\" blockSize=\"16\" keyBits=\"256\" hashSize=\"64\" cipherAlgorithm=\"AES\" "
        "cipherChaining=\"ChainingModeCBC\" hashAlgorithm=\"SHA512\" saltValue=\"" +
        dataSalt.toBase64() + "\"/><dataIntegrity encryptedHmacKey=\"" + hmacKeySealed.toBase64() +
        "\" encryptedHmacValue=\"" + hmacValueSealed.toBase64() +
        "\"/><keyEncryptors>"
        // A certificate's key encryptor comes first, as in workbooks encrypted for both.
        "<keyEncryptor uri=\"http://schemas.microsoft.com/office/2006/keyEncryptor/certificate\">"
        "<c:encryptedKey xmlns:c=\"http://schemas.microsoft.com/office/2006/keyEncryptor/certificate\" "
        "encryptedKeyValue=\"AA==\" x509Certificate=\"AA==\" certVerifier=\"AA==\"/></keyEncryptor>"
        "<keyEncryptor uri=\"http://schemas.microsoft.com/office/2006/keyEncryptor/password\">"
        "<p:encryptedKey spinCount=\"" +
        QByteArray::number(spinCount) +
        "\" saltSize=\"16\" blockSize=\"16\" keyBits=\"256\" hashSize=\"64\" cipherAlgorithm=\"AES\" "
        "cipherChaining=\"ChainingModeCBC\" hashAlgorithm=\"SHA512\" saltValue=\"" +
        keySalt.toBase64() + "\" encryptedVerifierHashInput=\"" + input.toBase64() +
        "\" encryptedVerifierHashValue=\"" + value.toBase64() + "\" encryptedKeyValue=\"" +
        keyValue.toBase64() + "\"/></keyEncryptor></keyEncryptors></encryption>";
    return {{"EncryptionInfo", le16(4) + le16(4) + le32(0x40) + xml}, {"EncryptedPackage", encrypted}};
}

// RC4 (from OpenSSL's legacy provider) over `data`, with `key`.
inline QByteArray rc4(const QByteArray& key, QByteArray data) {
    static OSSL_LIB_CTX* context = [] {
        OSSL_LIB_CTX* c = OSSL_LIB_CTX_new();
        OSSL_PROVIDER_load(c, "legacy");
        return c;
    }();
    static EVP_CIPHER* cipher = EVP_CIPHER_fetch(context, "RC4", nullptr);
    EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
    EVP_CipherInit_ex(ctx, cipher, nullptr, nullptr, nullptr, 1);
    EVP_CIPHER_CTX_set_key_length(ctx, int(key.size()));
    EVP_CipherInit_ex(ctx, nullptr, nullptr, reinterpret_cast<const unsigned char*>(key.constData()), nullptr,
                      1);
    int n = 0;
    EVP_CipherUpdate(ctx, reinterpret_cast<unsigned char*>(data.data()), &n,
                     reinterpret_cast<const unsigned char*>(data.constData()), int(data.size()));
    EVP_CIPHER_CTX_free(ctx);
    return data;
}

// RC4 through the CryptoAPI, as an .xls workbook has it: a salt, the key of each 1024-byte
// block from SHA-1 of the password's hash and the block's number, `keyBits` of it (a 40-bit key
// padded with zeros to 128 bits).
struct CryptoApiRc4 {
    QString password;
    int keyBits = 128;
    QByteArray salt = QByteArray::fromHex("102030405060708090a0b0c0d0e0f001");

    QByteArray key(quint32 block) const {
        const QByteArray h0 = digestOf(EVP_sha1(), salt + utf16le(password));
        const QByteArray k = digestOf(EVP_sha1(), h0 + le32(block)).left(keyBits / 8);
        return keyBits == 40 ? k + QByteArray(11, 0) : k;
    }
    // The FILEPASS record that goes right after the globals' BOF.
    QByteArray filePass() const {
        const QByteArray verifier = QByteArray::fromHex("cafebabe0123456789abcdeffedcba98");
        const QByteArray sealed = rc4(key(0), verifier + digestOf(EVP_sha1(), verifier));
        const QByteArray header = le32(0x04) + le32(0) + le32(0x6801) + le32(0x8004) +
                                  le32(quint32(keyBits)) + le32(1) + le32(0) + le32(0) +
                                  utf16le("Microsoft Enhanced Cryptographic Provider v1.0") + le16(0);
        return record(0x002F, le16(1) + le16(4) + le16(2) + le32(0x04) + le32(quint32(header.size())) +
                                  header + le32(16) + salt + sealed.left(16) + le32(20) + sealed.mid(16));
    }
    // Encrypts the records after FILEPASS in `stream`: their data, but for BOF records and a
    // BOUNDSHEET's offset, with the key stream of its block at its offset in the stream.
    QByteArray encrypt(QByteArray stream) const {
        qsizetype pos = 0;
        bool after = false;
        QByteArray keyStream;
        while (pos + 4 <= stream.size()) {
            const int id = quint8(stream[pos]) | (quint8(stream[pos + 1]) << 8);
            const int length = quint8(stream[pos + 2]) | (quint8(stream[pos + 3]) << 8);
            for (qsizetype i = pos + 4 + (id == 0x0085 ? 4 : 0);
                 after && id != 0x0809 && i < pos + 4 + length; ++i) {
                while (keyStream.size() <= i)
                    keyStream += rc4(key(quint32(keyStream.size() / 1024)), QByteArray(1024, 0));
                stream[i] = char(stream[i] ^ keyStream[i]);
            }
            after = after || id == 0x002F;
            pos += 4 + length;
        }
        return stream;
    }
};

} // namespace sheet_files
