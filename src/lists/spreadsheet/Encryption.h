#pragma once
// Workbooks encrypted with the password Excel uses when a workbook is only protected against
// changes ("VelvetSweatshop"): any program opens them without asking. The key derivations are
// those of [MS-OFFCRYPTO]; hashes and ciphers come from OpenSSL's libcrypto. A workbook that
// the default password does not open is left to its owner: the caller says it is protected.
#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>

namespace lists::sheet {

class CompoundFile;

// The password of a workbook that is only protected against changes.
QString defaultPassword();

// Why a workbook could not be decrypted.
enum class Decryption {
    Done,
    OtherPassword, // encrypted with a password of its own
    Unknown,       // an encryption this program does not know
    Damaged,       // its encryption data breaks off or contradicts itself
};

// What the import says of a workbook it could not decrypt: "työkirja on suojattu salasanalla"
// for one that has a password of its own.
QString decryptionFailure(Decryption why);

// An Office Open XML workbook (.xlsx, .xlsb, ...) encrypted into a compound file: its
// EncryptionInfo (standard or agile encryption) and EncryptedPackage streams give `package`,
// the ZIP archive of the workbook.
bool isEncryptedPackage(const CompoundFile& file);
Decryption decryptPackage(const CompoundFile& file, const QString& password, QByteArray& package);

// The RC4 of an .xls workbook stream (the FILEPASS record: RC4 of Office 97 or RC4 through the
// CryptoAPI), whose key changes every 1024 bytes of the stream.
class BiffCipher {
public:
    ~BiffCipher();
    BiffCipher(const BiffCipher&) = delete;
    BiffCipher& operator=(const BiffCipher&) = delete;

    // The cipher of a FILEPASS record's data, when `password` opens it.
    static std::unique_ptr<BiffCipher> fromFilePass(QByteArrayView filePass, const QString& password,
                                                    Decryption& status);
    // Decrypts `size` bytes at `data`, which stand at `offset` in the stream. Calls go forward
    // through the stream (the key stream is not wound back).
    void decrypt(char* data, qsizetype size, qint64 offset);

private:
    struct State;
    explicit BiffCipher(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

} // namespace lists::sheet
