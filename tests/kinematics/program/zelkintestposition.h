#ifndef ZELKINTESTPOSITION_H
#define ZELKINTESTPOSITION_H

#include <zelkinposition.h>

// A position that any script takes, through the constructor that the
// library's own kinds of position build on. Record: that of ZELKinPosition.
class ZELKinTestPosition : public ZELKinPosition
{
    Q_OBJECT

public:
    Q_INVOKABLE ZELKinTestPosition(ZELGeoContainer* container, const ZELGeoGeometryRef& reference);
    //! Inserts the new position into the script at `index` (-1 appends).
    explicit ZELKinTestPosition(ZELKinScript* script, int index = -1);
    ~ZELKinTestPosition() override;

private:
    void _constructor_checker();
};

#endif // ZELKINTESTPOSITION_H
