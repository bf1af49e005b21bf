#ifndef ZELTPJSONWRITER_P_H
#define ZELTPJSONWRITER_P_H

#include <QString>

#include <string>
#include <vector>

class QIODevice;

/*!
    Writes one JSON document to a device as it goes, so that a document of
    any size needs no more memory than a small buffer.

    The toolpath document writer (ZELTPDocumentWriter) speaks the format
    through it. The caller opens objects and arrays, names members with WriteKey() and
    writes values; the writer puts the commas in. A container opened with
    Layout::Block puts each entry on a line of its own, indented by two
    blanks per level; one opened with Layout::Line keeps its entries, and
    everything inside them, on one line. Numbers are written in the shortest
    form that reads back as the same double, whatever the locale, and -0 as 0.

    Every call that writes may throw ZELSysException "cannot write <name>:
    <reason>" (the name given to the constructor) when the device refuses
    the text; the document is then incomplete and the device should be
    discarded.
*/
class ZELTPJsonWriter
{
public:
    enum class Layout { Block, Line };

    //! Writes to `device` (not owned), open for writing; `name` names it in errors.
    ZELTPJsonWriter(QIODevice* device, const QString& name);

    void BeginObject(Layout layout = Layout::Block);
    void EndObject();
    void BeginArray(Layout layout = Layout::Block);
    void EndArray();

    //! Names the next value, inside an object. `key` is written as it is:
    //! plain ASCII without quotes, backslashes or control characters.
    void WriteKey(const char* key);
    //! Writes `text` escaped as ZELSysJsonText escapes it.
    void WriteString(const QString& text);
    //! Throws ZELSysException "cannot write a number that is not finite: <value>"
    //! for NaN and infinities, which JSON cannot hold.
    void WriteNumber(double value);
    void WriteInteger(long long value);

    //! Ends the document with a line break and hands everything buffered to the device.
    void Finish();

private:
    struct Container
    {
        Layout layout;
        int entries;
    };

    void Open(char bracket, Layout layout);
    void Close(char bracket);
    void BeginValue();
    void BreakLine(std::size_t depth);
    void FlushWhenFull();
    void Flush();

    QIODevice* m_device;
    QString m_name;
    std::string m_buffer;
    std::vector<Container> m_containers;
    bool m_afterKey = false;
};

#endif // ZELTPJSONWRITER_P_H
