#include "zelkinmachinedescriptioncheck.h"
#include "zelkinmachinedescriptioncheck_p.h"

#include "zelkinmachineloader.h"

#include <zelsysexception.h>

#include <QHash>
#include <QStringDecoder>
#include <QXmlStreamReader>

#include <cmath>
#include <limits>

namespace {

const QString kVariables = QStringLiteral("variables");
const QString kVariable = QStringLiteral("variable");
const QString kJoints = QStringLiteral("joints");
const QString kJoint = QStringLiteral("joint");
const QString kName = QStringLiteral("name");

// The root's numbers, in the order the loader reads them.
const QStringList kRootNumbers{QStringLiteral("head-travel"), QStringLiteral("cut-distance"),
                               QStringLiteral("add-pinch"),   QStringLiteral("add-distance"),
                               QStringLiteral("tow-width"),   QStringLiteral("roller-radius")};
const QString kMinimum = QStringLiteral("minimum");
const QString kMaximum = QStringLiteral("maximum");
const QString kMaxSpeed = QStringLiteral("max-speed");
const QString kMaxAccel = QStringLiteral("max-accel");
const QString kVector = QStringLiteral("vector");
const QString kPivot = QStringLiteral("pivot");

// The text the reader reads, decoded as it decodes it (a byte order mark
// first, then the declared encoding, else UTF-8), so that its character
// offsets index this text.
QString DecodedLikeTheReader(const QByteArray& description, const QString& declaredEncoding)
{
    const std::optional<QStringConverter::Encoding> marked = QStringConverter::encodingForData(description, u'<');
    QStringDecoder decoder = marked
        ? QStringDecoder(*marked)
        : QStringDecoder(declaredEncoding.isEmpty() ? "UTF-8" : qPrintable(declaredEncoding));
    if (!decoder.isValid())
        decoder = QStringDecoder(QStringConverter::Utf8);
    return decoder.decode(description);
}

/*
    The line each start tag begins on. The reader tells only where a tag
    ends, and a root element's attributes often span many lines; since an
    attribute value cannot hold a "<", the tag begins at the last "<" before
    its end. Tags are asked for in document order, so the text is counted
    once. Line ends are counted as the reader counts them: "\n", "\r\n"
    and a lone "\r".
*/
class StartLines
{
public:
    explicit StartLines(QString text)
        : text(std::move(text))
    {
    }

    qint64 OfTagEndingAt(qint64 offset)
    {
        const qsizetype start = text.lastIndexOf(QLatin1Char('<'), std::min<qsizetype>(offset, text.size()) - 1);
        for (; scanned < start; ++scanned) {
            const QChar c = text.at(scanned);
            const bool crlf = c == QLatin1Char('\r') && scanned + 1 < text.size()
                && text.at(scanned + 1) == QLatin1Char('\n');
            if (c == QLatin1Char('\n') || (c == QLatin1Char('\r') && !crlf))
                ++line;
        }
        return line;
    }

private:
    const QString text;
    qsizetype scanned = 0;
    qint64 line = 1;
};

// A text of the description as a message shows it: a control character
// (a character reference can put a line end into an attribute) as a
// backslash, "u" and its four hexadecimal digits, so that the message
// stays one line.
QString Shown(const QString& text)
{
    QString shown;
    for (const QChar c : text) {
        if (c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            shown += QStringLiteral("\\u") + QString::number(c.unicode(), 16).toUpper().rightJustified(4, u'0');
        else
            shown += c;
    }
    return shown;
}

// `text` read as the loader reads it; a number too large for a double
// reads as the infinity it rounds to. None when the text is no number.
std::optional<double> ReadNumber(const QString& text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    if (isNumber || std::isinf(value))
        return value;
    return std::nullopt;
}

// "is not a number" or "is not a finite number"; empty for a finite number.
QString ProblemOf(const std::optional<double>& number)
{
    if (!number)
        return ZELKinMachineDescriptionCheck::tr("is not a number");
    if (!std::isfinite(*number))
        return ZELKinMachineDescriptionCheck::tr("is not a finite number");
    return QString();
}

// What an element opens, for the elements it holds.
enum class Opens { Other, VariableList, JointList };

} // namespace

QString ZELKinMachineDescriptionCheckPrivate::Element::Describe(const QString& problem) const
{
    const QString element = Has(kName) ? QStringLiteral("<%1 name='%2'>").arg(tag, Shown(Get(kName)))
                                       : QStringLiteral("<%1>").arg(tag);
    return ZELKinMachineDescriptionCheck::tr("machine description line %1: %2: %3").arg(line).arg(element, problem);
}

std::optional<ZELKinMachineDescriptionCheckPrivate::Outline>
ZELKinMachineDescriptionCheckPrivate::Read(const QByteArray& description)
{
    QXmlStreamReader reader(description);
    // The loader's parser reads names as written, prefixes and all.
    reader.setNamespaceProcessing(false);
    std::optional<StartLines> startLines;
    QString declaredEncoding;
    Outline outline;
    // What each element open around the reader opens; the loader's bound
    // on nesting keeps this short.
    QList<Opens> open;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartDocument)
            declaredEncoding = reader.documentEncoding().toString();
        if (token == QXmlStreamReader::EndElement)
            open.removeLast();
        if (token != QXmlStreamReader::StartElement)
            continue;
        if (!startLines)
            startLines.emplace(DecodedLikeTheReader(description, declaredEncoding));
        const Element element{reader.qualifiedName().toString(), startLines->OfTagEndingAt(reader.characterOffset()),
                              reader.attributes()};
        Opens opens = Opens::Other;
        if (open.isEmpty()) {
            outline.root = element;
        } else if (element.tag == kVariables) {
            opens = Opens::VariableList;
            ++outline.variableLists;
        } else if (element.tag == kJoints) {
            opens = Opens::JointList;
            ++outline.jointLists;
        } else if (element.tag == kVariable && open.contains(Opens::VariableList)) {
            outline.variables.append(element);
        } else if (element.tag == kJoint && open.contains(Opens::JointList)) {
            outline.joints.append(element);
        }
        open.append(opens);
    }
    if (reader.hasError())
        return std::nullopt;
    return outline;
}

void ZELKinMachineDescriptionCheckPrivate::CheckRoot(const Element& root)
{
    for (const QString& attribute : kRootNumbers)
        CheckFinite(root, attribute);
}

void ZELKinMachineDescriptionCheckPrivate::CheckVariable(const Element& variable)
{
    CheckLimit(variable, kMinimum, -std::numeric_limits<double>::infinity());
    CheckLimit(variable, kMaximum, std::numeric_limits<double>::infinity());
    CheckPositive(variable, kMaxSpeed);
    CheckPositive(variable, kMaxAccel);
}

void ZELKinMachineDescriptionCheckPrivate::CheckJoint(const Element& joint)
{
    const std::optional<std::array<double, 3>> vector = CheckTriple(joint, kVector);
    if (vector && !(std::hypot((*vector)[0], (*vector)[1], (*vector)[2]) > 0.0))
        throw ZELSysException(joint.Describe(
            ZELKinMachineDescriptionCheck::tr("vector '%1' has length 0").arg(Shown(joint.Get(kVector)))));
    CheckTriple(joint, kPivot);
}

void ZELKinMachineDescriptionCheckPrivate::CheckEach(const QList<Element>& elements, const QString& kind,
                                                     void (*check)(const Element&))
{
    QHash<QString, qint64> firstLines;
    for (const Element& element : elements) {
        check(element);
        const QString name = element.Get(kName);
        const auto first = firstLines.constFind(name);
        if (first != firstLines.cend())
            throw ZELSysException(
                element.Describe(ZELKinMachineDescriptionCheck::tr("name '%1' is taken by the %2 on line %3")
                                     .arg(Shown(name), kind, QString::number(*first))));
        firstLines.insert(name, element.line);
    }
}

std::optional<double> ZELKinMachineDescriptionCheckPrivate::CheckFinite(const Element& element,
                                                                        const QString& attribute)
{
    if (!element.Has(attribute))
        return std::nullopt;
    const QString text = element.Get(attribute);
    const std::optional<double> value = ReadNumber(text);
    const QString problem = ProblemOf(value);
    if (!problem.isEmpty())
        throw ZELSysException(element.Describe(QStringLiteral("%1 '%2' %3").arg(attribute, Shown(text), problem)));
    return value;
}

void ZELKinMachineDescriptionCheckPrivate::CheckLimit(const Element& element, const QString& attribute,
                                                      double unlimited)
{
    if (!element.Has(attribute))
        return;
    const QString text = element.Get(attribute);
    const std::optional<double> value = ReadNumber(text);
    if (!value)
        throw ZELSysException(
            element.Describe(QStringLiteral("%1 '%2' %3").arg(attribute, Shown(text), ProblemOf(value))));
    if (!std::isfinite(*value) && *value != unlimited)
        throw ZELSysException(element.Describe(
            ZELKinMachineDescriptionCheck::tr("%1 '%2' is neither a finite number nor %3 (no limit)")
                .arg(attribute, Shown(text), unlimited < 0.0 ? QStringLiteral("-inf") : QStringLiteral("inf"))));
}

void ZELKinMachineDescriptionCheckPrivate::CheckPositive(const Element& element, const QString& attribute)
{
    const std::optional<double> value = CheckFinite(element, attribute);
    if (value && !(*value > 0.0))
        throw ZELSysException(element.Describe(ZELKinMachineDescriptionCheck::tr("%1 '%2' is not greater than 0")
                                                   .arg(attribute, Shown(element.Get(attribute)))));
}

std::optional<std::array<double, 3>> ZELKinMachineDescriptionCheckPrivate::CheckTriple(const Element& element,
                                                                                       const QString& attribute)
{
    const QString text = element.Get(attribute);
    const QStringList parts = text.split(QLatin1Char(','));
    if (!element.Has(attribute) || parts.size() < 3)
        return std::nullopt;
    std::array<double, 3> numbers{};
    for (int i = 0; i < 3; ++i) {
        const std::optional<double> number = ReadNumber(parts.at(i));
        const QString problem = ProblemOf(number);
        if (!problem.isEmpty())
            throw ZELSysException(element.Describe(
                QStringLiteral("%1 '%2': '%3' %4").arg(attribute, Shown(text), Shown(parts.at(i)), problem)));
        numbers[i] = *number;
    }
    return numbers;
}

ZELKinMachineDescriptionCheck::ZELKinMachineDescriptionCheck()
    : ZELKinMachineDescriptionCheck(new ZELKinMachineDescriptionCheckPrivate(this))
{
}

ZELKinMachineDescriptionCheck::ZELKinMachineDescriptionCheck(ZELKinMachineDescriptionCheckPrivate* d)
    : d_ptr(d)
{
}

ZELKinMachineDescriptionCheck::~ZELKinMachineDescriptionCheck() = default;

void ZELKinMachineDescriptionCheck::Check(const QByteArray& description) const
{
    Q_D(const ZELKinMachineDescriptionCheck);
    ZELKinMachineLoader::CheckBounds(description);
    const std::optional<ZELKinMachineDescriptionCheckPrivate::Outline> outline = d->Read(description);
    if (!outline || outline->root.Get(QStringLiteral("type")) != QLatin1String("AFP"))
        return;
    d->CheckRoot(outline->root);
    // Without exactly one list the loader stops at once, with its own message.
    if (outline->variableLists == 1)
        d->CheckEach(outline->variables, tr("variable"), &ZELKinMachineDescriptionCheckPrivate::CheckVariable);
    if (outline->jointLists == 1)
        d->CheckEach(outline->joints, tr("joint"), &ZELKinMachineDescriptionCheckPrivate::CheckJoint);
}
