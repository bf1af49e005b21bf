#ifndef ZELKINAFPGCODETOWEVENTS_P_H
#define ZELKINAFPGCODETOWEVENTS_P_H

#include <zelcomptowmask.h>

#include <QList>
#include <QString>

#include <limits>
#include <optional>

class ZELKinNCStream;
class ZELKinTowCommand;
class ZELKinTowCourse;
class ZELKinTowFeedCommand;
class ZELKinVariable;

/*!
    The tow events of one course for the tow controller: the ";PMAC1: G500"
    lines of a course block, each at a position along the course's material
    (U) axis, in mm of material from the course start.

    The course's commands are walked in order. A position moves the current
    U to its material value less its "uAxisOffset"; a tow feed command
    changes the rates of the tows it gives a rate for; a tow command adds
    an event for its mask at the current U:

    - add: "A/B", and "A/E" for the same tows a pinch distance later (the
      machine's pinch distance times the largest tow rate);
    - cut: "C/B";
    - force: "P/B", and each of its tows remembers where its pinch began;
    - release: "P/E". With a pinch maximum length, a tow pinched over a
      longer stretch is released and pinched again along the way: with L
      the stretch divided by the tow's rate, a release event at every
      pinch maximum length, each followed by a re-pinch a pinch release
      length later, while the lengths so far stay below L. When the stretch
      ends inside a release, the tow is left out of the release event of
      the command itself.

    Splitting needs a pinch maximum length and a pinch release length that
    are both finite and greater than zero, and a finite L (a tow rate of 0
    gives none): otherwise the stretch is not split. No tow gets more than
    MaximumPinchSplitEvents events from one stretch.

    Events with no tows are dropped, the rest sorted by U, and events of
    one kind less than 0.001 apart merged into the first of them, with the
    tows of both.
*/
class ZELKinAFPGCodeTowEvents
{
public:
    enum Kind { AddBegin = 0, AddEnd = 1, CutBegin = 2, PinchBegin = 3, PinchEnd = 4 };

    struct Event
    {
        double u;
        Kind kind;
        ZELCompTowMask mask;
    };

    //! The bound on the release and re-pinch events of one pinched stretch
    //! of one tow.
    static constexpr int MaximumPinchSplitEvents = 1000;

    //! Pinch lengths are in mm of material; NaN means not given.
    struct PinchSplitting
    {
        double maximumLength = std::numeric_limits<double>::quiet_NaN();
        double releaseLength = std::numeric_limits<double>::quiet_NaN();
    };

    //! `pinchDistance` is the machine's add pinch distance (mm);
    //! `materialVariable` the U axis (null: no position has a U value).
    ZELKinAFPGCodeTowEvents(double pinchDistance, const ZELKinVariable* materialVariable,
                            const PinchSplitting& splitting);

    //! The events of `course`, sorted and merged. `offset`, when given, is
    //! the "uAxisOffset" that every position of the course has.
    QList<Event> Collect(const ZELKinTowCourse* course, std::optional<double> offset = std::nullopt);

    //! The line ";PMAC1: G500U<u>A/B[<hexadecimal mask>]".
    static void WriteLine(ZELKinNCStream& out, const Event& event);

private:
    void Reset(const ZELKinTowCourse* course);
    void ApplyFeed(const ZELKinTowFeedCommand* command);
    //! Commands of a type other than the four kinds add nothing.
    void ApplyTowCommand(const ZELKinTowCommand* command);
    void ApplyForce(const ZELCompTowMask& mask);
    void ApplyRelease(const ZELCompTowMask& mask);
    //! Adds the release and re-pinch events of a pinched tow; returns
    //! whether the tow ends released, so that the command's own release
    //! event leaves it out.
    bool SplitPinch(int tow, double pinchStart);
    bool IsSplittingEnabled() const;
    void Add(double u, Kind kind, const ZELCompTowMask& mask);
    static QList<Event> SortedAndMerged(QList<Event> events);

    const double pinchDistance;
    const ZELKinVariable* const materialVariable;
    const PinchSplitting splitting;

    // The walk's state.
    int numTows = 0;
    double currentU = 0.0;
    QList<double> rates;
    QList<double> pinchStarts;
    double largestRate = 1.0;
    QList<Event> events;
};

#endif // ZELKINAFPGCODETOWEVENTS_P_H
