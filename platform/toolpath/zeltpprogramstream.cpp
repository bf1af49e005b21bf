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
    Finds the entries of the first "procedures" member of the first
    "program" member of the document's top-level object, as the parser's
    look-up by key would, while the file passes through it piece by piece,
    and keeps the rest of the document with each entry replaced by "{}".

    It follows strings, nesting and the three outer levels; deeper text is
    only counted. It checks no syntax beyond that, but for a control byte,
    which no JSON text holds and which ends the reading at once (a file of
    zeros is not read through): the head and each entry are parsed on
    their own later, and a failure there is reported from the whole file.
*/
class EntryFinder
{
public:
    using Entry = ZELTPProgramStreamPrivate::Entry;

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
    enum class Role { Other, Program, Procedures };
    struct Level
    {
        bool isObject = false;
        bool expectingKey = false;
        Role role = Role::Other;
        std::string key;
    };
    static constexpr int TrackedLevels = 3;

    Level* Innermost() { return m_depth >= 1 && m_depth <= TrackedLevels ? &m_levels[m_depth - 1] : nullptr; }
    bool InProcedures() const { return m_depth >= 1 && m_depth <= TrackedLevels && m_levels[m_depth - 1].role == Role::Procedures; }
    void ScanString(const char* data, qint64& i, qint64 size);
    void Open(bool isObject, qint64 offset);
    void Close(qint64 offset);
    void Separate();
    void Significant(qint64 offset);
    void BeginEntry(qint64 offset);
    void EndEntry();
    Role RoleOfValueOpening(bool isObject);
    //! Copies the document from where the head ends up to `to`, of the
    //! piece being fed; what went by in an earlier piece is whitespace.
    void CopyHead(qint64 to);

    std::array<Level, TrackedLevels> m_levels;
    int m_depth = 0;
    bool m_inString = false;
    bool m_escaped = false;
    bool m_capturingKey = false;
    bool m_programSeen = false;
    bool m_proceduresSeen = false;
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

void EntryFinder::Feed(const char* data, qint64 size)
{
    m_chunk = data;
    for (qint64 i = 0; i < size && !m_broken; ++i) {
        if (m_inString) {
            ScanString(data, i, size);
            continue;
        }
        if (m_depth > TrackedLevels) {
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
            if (m_awaitingEntry && InProcedures())
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
            if (InProcedures())
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
    if (m_awaitingEntry && InProcedures())
        BeginEntry(offset);
    const Role role = RoleOfValueOpening(isObject);
    ++m_depth;
    if (Level* level = Innermost()) {
        *level = Level{isObject, isObject, role, std::string()};
        m_awaitingEntry = role == Role::Procedures;
    }
}

// The role of the array or object that opens as the value of the innermost
// level's current member.
EntryFinder::Role EntryFinder::RoleOfValueOpening(bool isObject)
{
    const Level* level = Innermost();
    if (!level || !level->isObject || level->expectingKey)
        return Role::Other;
    if (m_depth == 1 && isObject && !m_programSeen && DecodedKey(level->key) == ZELTPDocument::Key::kProgram) {
        m_programSeen = true;
        return Role::Program;
    }
    if (level->role == Role::Program && !m_proceduresSeen && DecodedKey(level->key) == ZELTPDocument::Key::kProcedures) {
        m_proceduresSeen = true;
        return isObject ? Role::Other : Role::Procedures;
    }
    return Role::Other;
}

void EntryFinder::Close(qint64 offset)
{
    if (InProcedures() && m_inEntry)
        EndEntry();
    m_awaitingEntry = false;
    if (m_depth > 0)
        --m_depth;
    if (InProcedures())
        m_lastSignificant = offset;
}

void EntryFinder::Separate()
{
    if (Level* level = Innermost(); level && level->isObject)
        level->expectingKey = true;
    if (!InProcedures())
        return;
    // An entry without text ("[1,,2]") is left in the head, whose parse
    // then fails where the whole document's would.
    if (m_inEntry)
        EndEntry();
    m_awaitingEntry = true;
}

void EntryFinder::Significant(qint64 offset)
{
    if (!InProcedures())
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
    if (!file.open(QIODevice::ReadOnly))
        throw ZELTPFormatException(fileName, QString(), tr("cannot open the file: %1").arg(file.errorString()));
    if (file.isSequential())
        throw ZELTPFormatException(fileName, QString(),
                                   tr("a pipe or a device cannot be read one procedure at a time; give a file"));
    d->fileName = fileName;
    d->fileBytes = file.size();
    d->modified = QFileInfo(file).lastModified();
    d->entries.clear();

    EntryFinder finder;
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
    if (!file.open(QIODevice::ReadOnly))
        throw ZELTPFormatException(fileName, QString(),
                                   ZELTPProgramStream::tr("cannot open the file: %1").arg(file.errorString()));
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
    const qint64 bytes = GetProcedureBytes(index);
    d->RequireUnchanged();
    QFile file(d->fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw ZELTPFormatException(d->fileName, QString(), tr("cannot open the file: %1").arg(file.errorString()));
    simdjson::padded_string text{std::size_t(bytes)};
    if (!text.data())
        throw std::bad_alloc();
    if (!file.seek(d->entries.at(std::size_t(index)).begin))
        throw CannotRead(d->fileName, file);
    const qint64 read = file.read(text.data(), bytes);
    if (read < 0)
        throw CannotRead(d->fileName, file);
    if (read != bytes)
        throw ZELTPFormatException(d->fileName, QString(), tr("the file changed while it was read"));

    simdjson::dom::parser parser;
    simdjson::dom::element element;
    if (parser.parse(text).get(element))
        d->ThrowSyntaxError();
    text = simdjson::padded_string();
    // Each step points at the one before, so that each is a named value.
    const Location root = Location::Root();
    const Location program = root.Member(ZELTPDocument::Key::kProgram);
    const Location procedures = program.Member(ZELTPDocument::Key::kProcedures);
    try {
        ZELTPReading::ProgramBuilder builder(container);
        ZELTPProcedure* procedure = builder.BuildAlone(Value(element, procedures.Entry(index)));
        auto* whole = new ZELTPProgram(container, d->name);
        whole->SetRevision(d->revision);
        whole->AddProcedure(procedure);
        whole->Initialize();
        return whole;
    } catch (const Problem& problem) {
        throw ZELTPFormatException(d->fileName, problem.location, problem.text);
    }
}
