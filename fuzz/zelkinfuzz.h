#ifndef ZELKINFUZZ_H
#define ZELKINFUZZ_H

// What the fuzz targets share. Each target is one LLVMFuzzerTestOneInput;
// built with clang's -fsanitize=fuzzer it is a libFuzzer program (make
// fuzz), built with zelkinfuzzreplay.cpp it replays files, as the test
// suite does with fuzz/corpus.
//
// Some inputs reach the library's documented fatal messages, which end the
// process on purpose. The targets reject those inputs before handing them
// on (each says how), so that an ended process is always a finding.

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <cstddef>
#include <cstdio>
#include <cstdint>

namespace ZELKinFuzz {

inline QByteArray Bytes(const std::uint8_t* data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

// Warnings are expected on bad input; printing them would only slow the
// run. A fatal message is printed, and Qt then aborts: a finding.
inline void QuietWarnings()
{
    static const bool installed = [] {
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
            if (type == QtFatalMsg)
                std::fprintf(stderr, "fatal message: %s\n", qPrintable(message));
        });
        return true;
    }();
    Q_UNUSED(installed);
}

} // namespace ZELKinFuzz

#endif // ZELKINFUZZ_H
