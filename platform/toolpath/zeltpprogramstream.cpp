#include "zeltpprogramstream.h"
#include "zeltpprogramstream_p.h"

#include "zeltpdocumentkeys_p.h"
#include "zeltpformatexception.h"
#include "zeltpjsonsyntaxscanner_p.h"
#include "zeltpjsonvalue_p.h"
#include "zeltpprogram.h"
#include "zeltpprogrambuilder_p.h"

#include <zelgeocontainer.h>

#include <QFile>
#include <QFileInfo>

#include <simdjson.h>

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <new>
#include <optional>
#include <string_view>

namespace {

using ZELTPReading::Location;
using ZELTPReading::Problem;
using ZELTPReading::Value;

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
// The file is read through in pieces of this size.
constexpr qint64 ChunkBytes = qint64(1) << 23;
// What stands in the head for a procedure entry.
constexpr std::string_view EntryStandIn = "{}";
// A key longer than this is neither "program" nor "procedures", even with
// escapes.
constexpr std::size_t LongestKeyKept = 256;

std::size_t BodyStart(std::string_view text)
{
    return text.substr(0, ByteOrderMark.size()) == ByteOrderMark ? ByteOrderMark.size() : 0;
}

void OpenForReading(QFile& file, const QString& fileName)
{
    if (!file.open(QIODevice::ReadOnly))
        throw ZELTPFormatException(fileName, QString(),
                                   ZELTPProgramStream::tr("cannot open the file: %1").arg(file.errorString()));
}

ZELTPFormatException CannotRead(const QString& fileName, const QFile& file)
{
    return ZELTPFormatException(fileName, QString(),
                                ZELTPProgramStream::tr("cannot read the file: %1").arg(file.errorString()));
}

// The bytes that change nothing beneath the three tracked levels, outside
// a string: all but the quote, the brackets and the control bytes that no
// JSON text holds. Nearly all of a procedure's text is numbers, commas
// and colons, passed over here without a look at the finder's state.
constexpr std::array<bool, 256> DeepInertBytes = [] {
    std::array<bool, 256> inert{};
    for (int byte = 0x20; byte < 0x100; ++byte)
        inert[std::size_t(byte)] = true;
    for (const char structural : {'"', '{', '[', '}', ']'})
        inert[std::size_t(structural)] = false;
    for (const char whitespace : {'\t', '\n', '\r'})
        inert[std::size_t(whitespace)] = true;
    return inert;
}();

// A key as JSON reads it: escapes decoded.
std::string DecodedKey(const std::string& raw)
{
    if (raw.find('\\') == std::string::npos)
        return raw;
    const simdjson::padded_string quoted("\"" + raw + "\"");
    simdjson::dom::parser parser;
    std::string_view decoded;
    if (parser.parse(quoted).get_string().get(decoded))
        return std::string();
    return std::string(decoded);
}

/*
    Finds the entries of the array at the end of a path of keys, each the
    first member of its name in the object the key before leads to, from
    the document's top-level object on ("program", "procedures" in a
    toolpath document; "courses" in a procedure entry), as the parser's
    look-up by key would, while the text passes through it piece by piece.
    It keeps the rest of the text with each entry replaced by "{}".

    It follows strings, nesting and the levels on the path; deeper text is
    only counted. It checks no syntax beyond that, but for a control byte,
    which no JSON text holds and which ends the reading at once (a file of
    zeros is not read through): the rest and each entry are parsed on
    their own later, and a failure there is reported from the whole file.
*/
class EntryFinder
{
public:
    using Entry = ZELTPProgramStreamPrivate::Entry;
    //! The keys that lead to the array, at most MaxPath of them.
    explicit EntryFinder(std::initializer_list<const char*> path);

    static constexpr std::size_t MaxPath = 2;

    void Feed(const char* data, qint64 size);
    //! Whether the text ended outside any string and with every array and
    //! object closed, and held no byte that no JSON text holds.
    bool EndedWhole() const { return !m_broken && !m_inString && m_depth == 0; }
    //! Whether a byte that no JSON text holds came by: the rest need not
    //! be read.
    bool IsBroken() const { return m_broken; }
    std::string TakeHead() { return std::move(m_head); }
    std::vector<Entry> TakeEntries() { return std::move(m_entries); }

private:
    struct Level
    {
        bool isObject = false;
        bool expectingKey = false;
        //! How many keys of the path lead here; -1 off the path.
        int onPath = -1;
        std::string key;
    };
    static constexpr int MaxTrackedLevels = int(MaxPath) + 1;

    Level* Innermost() { return m_depth >= 1 && m_depth <= m_trackedLevels ? &m_levels[m_depth - 1] : nullptr; }
    bool InEntries() const
    {
        return m_depth >= 1 && m_depth <= m_trackedLevels && m_levels[m_depth - 1].onPath == m_pathLength;
    }
    void ScanString(const char* data, qint64& i, qint64 size);
    void Open(bool isObject, qint64 offset);
    void Close(qint64 offset);
    void Separate();
    void Significant(qint64 offset);
    void BeginEntry(qint64 offset);
    void EndEntry();
    int OnPathOfValueOpening(bool isObject);
    //! Copies the document from where the head ends up to `to`, of the
    //! piece being fed; what went by in an earlier piece is whitespace.
    void CopyHead(qint64 to);

    std::array<const char*, MaxPath> m_path{};
    int m_pathLength = 0;
    int m_trackedLevels = 1;
    //! Whether a member of each key of the path came by already.
    std::array<bool, MaxPath> m_keySeen{};
    std::array<Level, MaxTrackedLevels> m_levels;
    int m_depth = 0;
    bool m_inString = false;
    bool m_escaped = false;
    bool m_capturingKey = false;
    bool m_broken = false;

    bool m_awaitingEntry = false;
    bool m_inEntry = false;
    qint64 m_entryBegin = 0;
    qint64 m_lastSignificant = 0;

    const char* m_chunk = nullptr; // the piece being fed
    qint64 m_base = 0;             // its offset in the document
    qint64 m_copied = 0;           // the head holds the document up to here
    std::string m_head;
    std::vector<Entry> m_entries;
};

EntryFinder::EntryFinder(std::initializer_list<const char*> path)
    : m_pathLength(int(std::min(path.size(), MaxPath)))
    , m_trackedLevels(m_pathLength + 1)
{
    std::copy_n(path.begin(), m_pathLength, m_path.begin());
}

void EntryFinder::Feed(const char* data, qint64 size)
{
    m_chunk = data;
    for (qint64 i = 0; i < size && !m_broken; ++i) {
        if (m_inString) {
            ScanString(data, i, size);
            continue;
        }
        if (m_depth > m_trackedLevels) {
            while (i < size && DeepInertBytes[static_cast<unsigned char>(data[i])])
                ++i;
            if (i == size)
                break;
        }
        const char byte = data[i];
        const qint64 offset = m_base + i;
        switch (byte) {
        case ' ':
        case '\t':
        case '\n':
        case '\r':
            break;
        case '"':
            if (m_awaitingEntry && InEntries())
                BeginEntry(offset);
            m_inString = true;
            m_capturingKey = Innermost() && Innermost()->isObject && Innermost()->expectingKey;
            if (m_capturingKey)
                Innermost()->key.clear();
            break;
        case '{':
        case '[':
            Open(byte == '{', offset);
            break;
        case '}':
        case ']':
            Close(offset);
            break;
        case ',':
            Separate();
            break;
        case ':':
            if (Innermost() && Innermost()->isObject)
                Innermost()->expectingKey = false;
            break;
        default:
            m_broken = static_cast<unsigned char>(byte) < 0x20;
            Significant(offset);
            break;
        }
    }
    const qint64 end = m_base + size;
    if (!m_inEntry)
        CopyHead(end);
    m_base = end;
}

// Inside a string: on to its closing quote, keeping the key's text.
void EntryFinder::ScanString(const char* data, qint64& i, qint64 size)
{
    for (; i < size; ++i) {
        const char byte = data[i];
        if (static_cast<unsigned char>(byte) < 0x20) {
            m_broken = true;
            return;
        }
        if (m_escaped) {
            m_escaped = false;
        } else if (byte == '\\') {
            m_escaped = true;
        } else if (byte == '"') {
            m_inString = false;
            if (InEntries())
                m_lastSignificant = m_base + i;
            m_capturingKey = false;
            return;
        }
        if (m_capturingKey && Innermost()->key.size() < LongestKeyKept)
            Innermost()->key.push_back(byte);
    }
    --i;
}

void EntryFinder::Open(bool isObject, qint64 offset)
{
    if (m_awaitingEntry && InEntries())
        BeginEntry(offset);
    const int onPath = m_depth == 0 ? (isObject ? 0 : -1) : OnPathOfValueOpening(isObject);
    ++m_depth;
    if (Level* level = Innermost()) {
        *level = Level{isObject, isObject, onPath, std::string()};
        m_awaitingEntry = onPath == m_pathLength;
    }
}

// How many keys of the path lead to the array or object that opens as the
// value of the innermost level's current member: one more than to that
// level for the first member of the path's next key, which must be an
// object on the way and is an array at the end.
int EntryFinder::OnPathOfValueOpening(bool isObject)
{
    const Level* level = Innermost();
    if (!level || !level->isObject || level->expectingKey || level->onPath < 0 || level->onPath >= m_pathLength)
        return -1;
    const int key = level->onPath;
    const bool last = key + 1 == m_pathLength;
    if (m_keySeen[std::size_t(key)] || (!last && !isObject) || DecodedKey(level->key) != m_path[std::size_t(key)])
        return -1;
    m_keySeen[std::size_t(key)] = true;
    return last && isObject ? -1 : key + 1;
}

void EntryFinder::Close(qint64 offset)
{
    if (InEntries() && m_inEntry)
        EndEntry();
    m_awaitingEntry = false;
    if (m_depth > 0)
        --m_depth;
    if (InEntries())
        m_lastSignificant = offset;
}

void EntryFinder::Separate()
{
    if (Level* level = Innermost(); level && level->isObject)
        level->expectingKey = true;
    if (!InEntries())
        return;
    // An entry without text ("[1,,2]") is left in the head, whose parse
    // then fails where the whole document's would.
    if (m_inEntry)
        EndEntry();
    m_awaitingEntry = true;
}

void EntryFinder::Significant(qint64 offset)
{
    if (!InEntries())
        return;
    if (m_awaitingEntry)
        BeginEntry(offset);
    m_lastSignificant = offset;
}

void EntryFinder::BeginEntry(qint64 offset)
{
    CopyHead(offset);
    m_awaitingEntry = false;
    m_inEntry = true;
    m_entryBegin = offset;
    m_lastSignificant = offset;
}

void EntryFinder::EndEntry()
{
    m_inEntry = false;
    m_entries.push_back(Entry{m_entryBegin, m_lastSignificant + 1});
    m_head.append(EntryStandIn);
    m_copied = m_lastSignificant + 1;
}

void EntryFinder::CopyHead(qint64 to)
{
    const qint64 from = std::max(m_copied, m_base);
    if (to > from)
        m_head.append(m_chunk + (from - m_base), std::size_t(to - from));
    m_copied = to;
}

// The file mapped for reading while it is scanned for a syntax error.
class MappedFile
{
public:
    explicit MappedFile(QFile& file)
        : m_size(std::size_t(file.size()))
    {
        if (m_size > 0)
            m_data = file.map(0, qint64(m_size));
    }
    std::string_view GetText() const
    {
        return m_data ? std::string_view(reinterpret_cast<const char*>(m_data), m_size) : std::string_view();
    }

private:
    std::size_t m_size;
    uchar* m_data = nullptr;
};

/*
    One procedure entry read back from the file: its text with each course
    replaced by "{}", and each course parsed on its own when the builder
    comes to it. A procedure of millions of points is never held as text or
    as one parsed document, only its courses one at a time.
*/
class CourseReader final : public ZELTPReading::EntrySource
{
public:
    using Entry = ZELTPProgramStreamPrivate::Entry;

    CourseReader(const ZELTPProgramStreamPrivate& stream, const Entry& procedure);

    std::string TakeHead() { return std::move(m_head); }
    simdjson::dom::element Parse(qsizetype index) override;
    void ParseRest() override;

private:
    //! Reads bytes [begin, end) of the file into the text buffer.
    void Read(qint64 begin, qint64 end);

    const ZELTPProgramStreamPrivate& m_stream;
    QFile m_file;
    std::string m_head;
    //! Each course's bytes in the file.
    std::vector<Entry> m_courses;
    std::size_t m_unparsed = 0;
    simdjson::padded_string m_text;
    simdjson::dom::parser m_parser;
};

CourseReader::CourseReader(const ZELTPProgramStreamPrivate& stream, const Entry& procedure)
    : m_stream(stream)
    , m_file(stream.fileName)
{
    OpenForReading(m_file, stream.fileName);
    EntryFinder finder({ZELTPDocument::Key::kCourses});
    const qint64 bytes = procedure.end - procedure.begin;
    m_text = simdjson::padded_string(std::size_t(std::min(ChunkBytes, bytes)));
    for (qint64 done = 0; done < bytes && !finder.IsBroken();) {
        const qint64 end = std::min(bytes, done + ChunkBytes);
        Read(procedure.begin + done, procedure.begin + end);
        finder.Feed(m_text.data(), end - done);
        done = end;
    }
    if (!finder.EndedWhole())
        stream.ThrowSyntaxError();
    m_head = finder.TakeHead();
    m_courses = finder.TakeEntries();
    qint64 longest = 0;
    for (Entry& course : m_courses) {
        course.begin += procedure.begin;
        course.end += procedure.begin;
        longest = std::max(longest, course.end - course.begin);
    }
    m_text = simdjson::padded_string(std::size_t(longest));
}

void CourseReader::Read(qint64 begin, qint64 end)
{
    if (!m_file.seek(begin))
        throw CannotRead(m_stream.fileName, m_file);
    const qint64 read = m_file.read(m_text.data(), end - begin);
    if (read < 0)
        throw CannotRead(m_stream.fileName, m_file);
    if (read != end - begin)
        throw ZELTPFormatException(m_stream.fileName, QString(),
                                   ZELTPProgramStream::tr("the file changed while it was read"));
}

simdjson::dom::element CourseReader::Parse(qsizetype index)
{
    const Entry& course = m_courses.at(std::size_t(index));
    Read(course.begin, course.end);
    m_unparsed = std::max(m_unparsed, std::size_t(index) + 1);
    simdjson::dom::element element;
    if (m_parser.parse(m_text.data(), std::size_t(course.end - course.begin), false).get(element))
        m_stream.ThrowSyntaxError();
    return element;
}

void CourseReader::ParseRest()
{
    while (m_unparsed < m_courses.size())
        Parse(qsizetype(m_unparsed));
}

} // namespace

ZELTPProgramStream::ZELTPProgramStream()
    : ZELTPProgramStream(new ZELTPProgramStreamPrivate(this))
{
}

ZELTPProgramStream::ZELTPProgramStream(ZELTPProgramStreamPrivate* d)
    : d_ptr(d)
{
}

ZELTPProgramStream::~ZELTPProgramStream() = default;

void ZELTPProgramStream::Open(const QString& fileName)
{
    Q_D(ZELTPProgramStream);
    QFile file(fileName);
    OpenForReading(file, fileName);
    if (file.isSequential())
        throw ZELTPFormatException(fileName, QString(),
                                   tr("a pipe or a device cannot be read one procedure at a time; give a file"));
    d->fileName = fileName;
    d->fileBytes = file.size();
    d->modified = QFileInfo(file).lastModified();
    d->entries.clear();

    EntryFinder finder({ZELTPDocument::Key::kProgram, ZELTPDocument::Key::kProcedures});
    std::vector<char> chunk(std::size_t(std::min(ChunkBytes, std::max<qint64>(d->fileBytes, 1))));
    for (;;) {
        const qint64 read = file.read(chunk.data(), qint64(chunk.size()));
        if (read < 0)
            throw CannotRead(fileName, file);
        if (read == 0)
            break;
        finder.Feed(chunk.data(), read);
        if (finder.IsBroken())
            break;
    }
    if (!finder.EndedWhole())
        d->ThrowSyntaxError();
    d->entries = finder.TakeEntries();
    d->ReadHead(finder.TakeHead());
}

void ZELTPProgramStreamPrivate::ReadHead(std::string&& head)
{
    const std::size_t start = BodyStart(head);
    simdjson::padded_string text(head.data() + start, head.size() - start);
    head = std::string();
    simdjson::dom::parser parser;
    simdjson::dom::element root;
    if (parser.parse(text).get(root))
        ThrowSyntaxError();
    ZELGeoContainer container;
    try {
        ZELTPReading::ProgramBuilder builder(&container);
        const ZELTPProgram* program = builder.BuildHead(Value(root, Location::Root()));
        name = program->GetName();
        revision = program->GetRevision();
    } catch (const Problem& problem) {
        throw ZELTPFormatException(fileName, problem.location, problem.text);
    }
}

void ZELTPProgramStreamPrivate::ThrowSyntaxError() const
{
    QFile file(fileName);
    OpenForReading(file, fileName);
    const MappedFile mapped(file);
    const std::string_view text = mapped.GetText();
    if (std::optional<Problem> problem = ZELTPReading::SyntaxScanner(text).FindError(BodyStart(text)))
        throw ZELTPFormatException(fileName, problem->location, problem->text);
    throw ZELTPFormatException(fileName, QStringLiteral("$"), ZELTPProgramStream::tr("invalid JSON"));
}

void ZELTPProgramStreamPrivate::RequireUnchanged() const
{
    const QFileInfo info(fileName);
    if (info.size() != fileBytes || info.lastModified() != modified)
        throw ZELTPFormatException(fileName, QString(), ZELTPProgramStream::tr("the file changed while it was read"));
}

QString ZELTPProgramStream::GetFileName() const
{
    Q_D(const ZELTPProgramStream);
    return d->fileName;
}

qint64 ZELTPProgramStream::GetFileBytes() const
{
    Q_D(const ZELTPProgramStream);
    return d->fileBytes;
}

QString ZELTPProgramStream::GetName() const
{
    Q_D(const ZELTPProgramStream);
    return d->name;
}

QString ZELTPProgramStream::GetRevision() const
{
    Q_D(const ZELTPProgramStream);
    return d->revision;
}

int ZELTPProgramStream::GetNumProcedures() const
{
    Q_D(const ZELTPProgramStream);
    return int(d->entries.size());
}

qint64 ZELTPProgramStream::GetProcedureBytes(int index) const
{
    Q_D(const ZELTPProgramStream);
    if (index < 0 || std::size_t(index) >= d->entries.size())
        return 0;
    return d->entries[std::size_t(index)].end - d->entries[std::size_t(index)].begin;
}

int ZELTPProgramStream::GetLargestProcedure() const
{
    int largest = -1;
    for (int i = 0; i < GetNumProcedures(); ++i) {
        if (largest < 0 || GetProcedureBytes(i) > GetProcedureBytes(largest))
            largest = i;
    }
    return largest;
}

ZELTPProgram* ZELTPProgramStream::ReadProcedure(int index, ZELGeoContainer* container) const
{
    Q_D(const ZELTPProgramStream);
    d->RequireUnchanged();
    CourseReader courses(*d, d->entries.at(std::size_t(index)));
    const simdjson::padded_string text(courses.TakeHead());
    simdjson::dom::parser parser;
    simdjson::dom::element element;
    if (parser.parse(text).get(element))
        d->ThrowSyntaxError();
    // Each step points at the one before, so that each is a named value.
    const Location root = Location::Root();
    const Location program = root.Member(ZELTPDocument::Key::kProgram);
    const Location procedures = program.Member(ZELTPDocument::Key::kProcedures);
    try {
        ZELTPReading::ProgramBuilder builder(container);
        ZELTPProcedure* procedure = builder.BuildAlone(Value(element, procedures.Entry(index)), &courses);
        auto* whole = new ZELTPProgram(container, d->name);
        whole->SetRevision(d->revision);
        whole->AddProcedure(procedure);
        whole->Initialize();
        return whole;
    } catch (const Problem& problem) {
        // The whole document's parse would have failed before any rule was
        // checked.
        courses.ParseRest();
        throw ZELTPFormatException(d->fileName, problem.location, problem.text);
    }
}
