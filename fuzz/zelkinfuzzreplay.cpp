// Runs the fuzz target of this program on each file named on the command
// line, or on each file of each folder named, as libFuzzer would.

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int Replay(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return 1;
    }
    const QByteArray bytes = file.readAll();
    std::fprintf(stderr, "replaying %s (%lld bytes)\n", qPrintable(path), static_cast<long long>(bytes.size()));
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()), std::size_t(bytes.size()));
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    int failures = 0;
    int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (QFileInfo(argument).isDir()) {
            const QDir folder(argument);
            for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
                failures += Replay(folder.filePath(name));
                ++replayed;
            }
        } else {
            failures += Replay(argument);
            ++replayed;
        }
    }
    std::fprintf(stderr, "%d inputs replayed\n", replayed);
    return failures == 0 && replayed > 0 ? 0 : 1;
}
