#ifndef ZELKINMACHINEDESCRIPTIONCHECK_P_H
#define ZELKINMACHINEDESCRIPTIONCHECK_P_H

#include "zelkinmachinedescriptioncheck.h"

#include <QList>
#include <QString>
#include <QXmlStreamAttributes>

#include <array>
#include <optional>

class ZELKinMachineDescriptionCheckPrivate
{
    Q_DECLARE_PUBLIC(ZELKinMachineDescriptionCheck)

public:
    explicit ZELKinMachineDescriptionCheckPrivate(ZELKinMachineDescriptionCheck* q)
        : q_ptr(q)
    {
    }
    virtual ~ZELKinMachineDescriptionCheckPrivate() = default;

    //! One element of the description, as far as the check reads it.
    struct Element
    {
        QString tag;
        //! The line its start tag begins on, from 1.
        qint64 line = 0;
        QXmlStreamAttributes attributes;

        bool Has(const QString& attribute) const { return attributes.hasAttribute(attribute); }
        QString Get(const QString& attribute) const { return attributes.value(attribute).toString(); }
        //! "machine description line 29: <variable name='Y'>: " and `problem`.
        QString Describe(const QString& problem) const;
    };

    //! The parts of a description that the loader builds from.
    struct Outline
    {
        Element root;
        //! How many "variables" and "joints" elements stand below the root.
        int variableLists = 0;
        int jointLists = 0;
        //! The "variable" elements below any "variables" element, and the
        //! "joint" elements below any "joints" element, in document order.
        QList<Element> variables;
        QList<Element> joints;
    };

    //! The outline of `description`; none when it does not parse.
    static std::optional<Outline> Read(const QByteArray& description);

    static void CheckRoot(const Element& root);
    static void CheckVariable(const Element& variable);
    static void CheckJoint(const Element& joint);
    //! Checks each of `elements` in document order with `check`, and
    //! refuses one whose name an element before it has taken; `kind` names
    //! the elements in the message.
    static void CheckEach(const QList<Element>& elements, const QString& kind, void (*check)(const Element&));

    //! The value of `attribute`, when present, read as the loader reads it;
    //! throws when it is not a finite number.
    static std::optional<double> CheckFinite(const Element& element, const QString& attribute);
    //! A limit may also be the infinity `unlimited` on its own side, which
    //! limits nothing, as a limit left out does.
    static void CheckLimit(const Element& element, const QString& attribute, double unlimited);
    static void CheckPositive(const Element& element, const QString& attribute);
    //! Checks the three numbers of a triple (`vector`, `pivot`) of three or
    //! more parts and returns them; none when the attribute is missing or
    //! has fewer parts, which the loader reports itself.
    static std::optional<std::array<double, 3>> CheckTriple(const Element& element, const QString& attribute);

    ZELKinMachineDescriptionCheck* const q_ptr;
};

#endif // ZELKINMACHINEDESCRIPTIONCHECK_P_H
