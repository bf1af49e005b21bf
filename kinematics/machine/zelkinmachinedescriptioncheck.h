#ifndef ZELKINMACHINEDESCRIPTIONCHECK_H
#define ZELKINMACHINEDESCRIPTIONCHECK_H

#include "zelkinematics_export.h"

#include <QByteArray>
#include <QCoreApplication>

#include <memory>

class ZELKinMachineDescriptionCheckPrivate;

/*!
    Refuses a machine description that ZELKinMachineLoader would build but
    that no machine could have, before the loader sees it. The loader reads
    a number that is not one as 0 and takes NaN, infinities, a joint vector
    of length 0 and two axes of one name without a word; a machine built
    from such a description moves its axes where nobody asked.

    The check reads the document as the loader finds its parts: the root's
    head values, the "variable" elements below the one "variables" element
    and the "joint" elements below the one "joints" element. It refuses:

    - a number attribute the loader reads that is not a finite number: the
      root's "head-travel", "cut-distance", "add-pinch", "add-distance",
      "tow-width" and "roller-radius", a variable's "max-speed" and
      "max-accel", and each of the three numbers of a joint's "vector" and
      "pivot";
    - a variable's "minimum" or "maximum" that is not a finite number,
      except "-inf" as minimum and "inf" as maximum, which limit nothing;
    - a "max-speed" or "max-accel" that is not greater than 0;
    - a joint "vector" of length 0;
    - a second variable, or a second joint, of a name already taken.

    What the loader reports itself passes untouched, so that its message
    stays the one given: a document that does not parse, a root "type" other
    than "AFP", missing attributes, triples of fewer than three parts, and
    not exactly one "variables" or "joints" element (the variables and
    joints are then not checked).
*/
class ZELKINEMATICS_EXPORT ZELKinMachineDescriptionCheck
{
    Q_DECLARE_TR_FUNCTIONS(ZELKinMachineDescriptionCheck)

public:
    ZELKinMachineDescriptionCheck();
    virtual ~ZELKinMachineDescriptionCheck();

    //! Checks the description `description`. Throws ZELSysException with
    //! the first problem in document order, naming the line the element
    //! starts on, the element and the attribute:
    //! "machine description line 29: <variable name='Y'>: max-speed 'abc'
    //! is not a number", "... <joint name='C'>: vector '0,0,0' has length
    //! 0", "... <variable name='X'>: name 'X' is taken by the variable on
    //! line 28". A description over the loader's bounds gets the loader's
    //! message (ZELKinMachineLoader::CheckBounds) before it is read.
    void Check(const QByteArray& description) const;

protected:
    ZELKinMachineDescriptionCheck(ZELKinMachineDescriptionCheckPrivate* d);

    std::unique_ptr<ZELKinMachineDescriptionCheckPrivate> const d_ptr;

private:
    Q_DECLARE_PRIVATE(ZELKinMachineDescriptionCheck)
    Q_DISABLE_COPY_MOVE(ZELKinMachineDescriptionCheck)
};

#endif // ZELKINMACHINEDESCRIPTIONCHECK_H
