// List files (.sl1, .sl2, .csv and the shipped lists): recognised, decoded and split into rows.
#include "FuzzSupport.h"
#include "lists/ListFiles.h"

TAMRIK_FUZZ_START

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lists::ListFileContent content;
    QString error;
    lists::readListBytes(fuzz::bytes(data, size), QStringLiteral("luettelo.sl1"), QStringLiteral(";"),
                         content, &error);
    return 0;
}
