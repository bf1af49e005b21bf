#ifndef ZELTPPROGRAMREADER_P_H
#define ZELTPPROGRAMREADER_P_H

#include "zeltpprogramreader.h"

#include <cstddef>

namespace simdjson {
struct padded_string;
}

class ZELTPProgramReaderPrivate
{
    Q_DECLARE_PUBLIC(ZELTPProgramReader)

public:
    ZELTPProgramReaderPrivate(ZELTPProgramReader* q, ZELGeoContainer* container)
        : q_ptr(q)
        , container(container)
    {
    }
    virtual ~ZELTPProgramReaderPrivate() = default;

    //! Reads the document of the first `length` bytes of `text`; what the
    //! public Read calls promise. The text is released once it is parsed.
    ZELTPProgram* ReadText(simdjson::padded_string&& text, std::size_t length, const QString& sourceName) const;

    ZELTPProgramReader* const q_ptr;
    ZELGeoContainer* const container;
};

#endif // ZELTPPROGRAMREADER_P_H
