#ifndef ZELTPDOCUMENTWRITER_P_H
#define ZELTPDOCUMENTWRITER_P_H

#include "zeltpdocumentwriter.h"
#include "zeltpjsonwriter_p.h"

class ZELTPDocumentWriterPrivate
{
    Q_DECLARE_PUBLIC(ZELTPDocumentWriter)

public:
    ZELTPDocumentWriterPrivate(ZELTPDocumentWriter* q, QIODevice* device, const QString& name)
        : q_ptr(q)
        , json(device, name)
    {
    }
    virtual ~ZELTPDocumentWriterPrivate() = default;

    void WriteText(const char* key, const QString& text);
    void WriteNumber(const char* key, double value);
    void WriteInteger(const char* key, long long value);
    void WriteTriple(const char* key, double x, double y, double z);
    void WriteSafetyPlane(const ZELMathPlane& plane);
    void WriteMachineConfiguration(const char* key, const ZELTPMachineConfiguration& configuration);
    void WritePly(const ZELTPDocumentWriter::Ply& ply);
    void WriteToolChange(const ZELTPDocumentWriter::ToolChange& toolChange);
    void WriteTilts(const ZELTPDocumentWriter::Tilts& tilts);
    //! Opens a trajectory object, up to its "points" array.
    void BeginTrajectory(const char* kind, double feedrate);
    void OpenPoints();
    //! Opens an object of the array being written, names it and opens its "trajectories".
    void BeginTrajectoryOwner(const QString& name);

    ZELTPDocumentWriter* const q_ptr;
    ZELTPJsonWriter json;
    ZELTPDocumentWriter::Counts counts;
};

#endif // ZELTPDOCUMENTWRITER_P_H
