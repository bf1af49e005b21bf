#include "zeltpprogramreader.h"
#include "zeltpprogramreader_p.h"

#include "zeltpformatexception.h"
#include "zeltpjsonsyntaxscanner_p.h"
#include "zeltpjsonvalue_p.h"
#include "zeltpprogrambuilder_p.h"

#include <QFile>

#include <simdjson.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

namespace {

using ZELTPReading::Problem;

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

// Why simdjson refused the document at `text` (from byte `start` on).
Problem SyntaxProblem(std::string_view text, std::size_t start, simdjson::error_code error)
{
    const QString reason = QString::fromUtf8(simdjson::error_message(error));
    if (error == simdjson::CAPACITY || error == simdjson::MEMALLOC)
        return Problem{QString(), ZELTPProgramReader::tr("cannot parse the document: %1").arg(reason)};
    if (std::optional<Problem> problem = ZELTPReading::SyntaxScanner(text).FindError(start))
        return *problem;
    return Problem{QStringLiteral("$"), ZELTPProgramReader::tr("invalid JSON: %1").arg(reason)};
}

} // namespace

ZELTPProgram* ZELTPProgramReaderPrivate::ReadText(simdjson::padded_string&& text, std::size_t length,
                                                  const QString& sourceName) const
{
    const std::string_view document(text.data(), length);
    const std::size_t start = document.substr(0, ByteOrderMark.size()) == ByteOrderMark ? ByteOrderMark.size() : 0;
    simdjson::dom::parser parser;
    simdjson::dom::element root;
    const simdjson::error_code error = parser.parse(text.data() + start, length - start, false).get(root);
    try {
        if (error)
            throw SyntaxProblem(document, start, error);
        // The parsed document holds all it needs; the text goes before the
        // program grows.
        text = simdjson::padded_string();
        ZELTPReading::ProgramBuilder builder(container);
        return builder.Build(ZELTPReading::Value(root, ZELTPReading::Location::Root()));
    } catch (const Problem& problem) {
        throw ZELTPFormatException(sourceName, problem.location, problem.text);
    }
}

ZELTPProgramReader::ZELTPProgramReader(ZELGeoContainer* container)
    : ZELTPProgramReader(new ZELTPProgramReaderPrivate(this, container))
{
}

ZELTPProgramReader::ZELTPProgramReader(ZELTPProgramReaderPrivate* d)
    : d_ptr(d)
{
}

ZELTPProgramReader::~ZELTPProgramReader() = default;

namespace {

// The first read of a stream; each further one reads as much again as the
// stream has given so far.
constexpr std::size_t FirstStreamRead = std::size_t(1) << 16;

ZELTPFormatException TooLarge(const QString& fileName, qint64 maximumBytes)
{
    return ZELTPFormatException(
        fileName, QString(),
        ZELTPProgramReader::tr("the toolpath is larger than %1 bytes, the most the reader takes").arg(maximumBytes));
}

ZELTPFormatException CannotRead(const QString& fileName, const QFile& file)
{
    return ZELTPFormatException(fileName, QString(),
                                ZELTPProgramReader::tr("cannot read the file: %1").arg(file.errorString()));
}

// A byte below 0x20 other than tab, line feed and carriage return stands
// nowhere in a JSON text, in a string or out of one. A stream that gives one
// (a device such as /dev/zero or /dev/urandom, a binary file piped in) is
// refused there and read no further: it may never end.
bool IsControlByte(char byte)
{
    return static_cast<unsigned char>(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

ZELTPFormatException ControlByte(const QString& fileName, std::size_t offset, char byte)
{
    return ZELTPFormatException(
        fileName, QString(),
        ZELTPProgramReader::tr("byte %1 is the control character 0x%2, which no JSON text "
                               "holds; a pipe or a device is read no further")
            .arg(offset)
            .arg(QStringLiteral("%1").arg(static_cast<unsigned char>(byte), 2, 16, QLatin1Char('0')).toUpper()));
}

// `text` with room for `size` bytes, its first `length` bytes kept.
simdjson::padded_string Grown(const simdjson::padded_string& text, std::size_t length, std::size_t size)
{
    simdjson::padded_string grown(size);
    if (!grown.data())
        throw std::bad_alloc();
    std::copy_n(text.data(), length, grown.data());
    return grown;
}

// A read of a file whose size is no guide (a pipe, a device, a terminal,
// or a file that says it is empty): to its end, holding no more than one
// byte past `maximumBytes`.
std::pair<simdjson::padded_string, std::size_t> ReadStream(QFile& file, const QString& fileName, qint64 maximumBytes)
{
    const std::size_t limit = std::size_t(maximumBytes) + 1;
    simdjson::padded_string text;
    std::size_t length = 0;
    for (;;) {
        if (length == text.size())
            text = Grown(text, length, std::min(limit, std::max(FirstStreamRead, 2 * length)));
        const qint64 read = file.read(text.data() + length, qint64(text.size() - length));
        if (read < 0)
            throw CannotRead(fileName, file);
        if (read == 0)
            return {std::move(text), length};
        const char* const begin = text.data() + length;
        const char* const control = std::find_if(begin, begin + read, IsControlByte);
        if (control != begin + read)
            throw ControlByte(fileName, length + std::size_t(control - begin), *control);
        length += std::size_t(read);
        if (length == limit)
            throw TooLarge(fileName, maximumBytes);
    }
}

} // namespace

ZELTPProgram* ZELTPProgramReader::Read(const QString& fileName, qint64 maximumBytes) const
{
    Q_D(const ZELTPProgramReader);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw ZELTPFormatException(fileName, QString(), tr("cannot open the file: %1").arg(file.errorString()));
    const qint64 bound = std::clamp(maximumBytes, qint64(0), MaximumDocumentBytes);
    const qint64 size = file.size();
    if (size > bound)
        throw TooLarge(fileName, bound);
    if (file.isSequential() || size == 0) {
        auto [text, length] = ReadStream(file, fileName, bound);
        return d->ReadText(std::move(text), length, fileName);
    }
    simdjson::padded_string text{std::size_t(size)};
    if (!text.data())
        throw std::bad_alloc();
    const qint64 read = file.read(text.data(), size);
    if (read < 0)
        throw CannotRead(fileName, file);
    file.close();
    return d->ReadText(std::move(text), std::size_t(read), fileName);
}

ZELTPProgram* ZELTPProgramReader::ReadData(const QByteArray& data, const QString& sourceName) const
{
    Q_D(const ZELTPProgramReader);
    simdjson::padded_string text(data.constData(), std::size_t(data.size()));
    if (!text.data())
        throw std::bad_alloc();
    const std::size_t length = text.size();
    return d->ReadText(std::move(text), length, sourceName);
}
