#ifndef ZELKINNCPLYRUN_P_H
#define ZELKINNCPLYRUN_P_H

#include "zelkinncreplay.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <limits>

namespace ZELKinNCWords {
struct Word;
}

/*!
    The state a controller keeps while it runs one ply file: each line is
    handed to Run in the order of the file, and Finish ends the file. What
    the lines do goes into the ZELKinNCPlyFile given: motions, tow events,
    course records and irregularities.
*/
class ZELKinNCPlyRun
{
public:
    //! Lengths and feeds are written in inches, and inches per minute.
    static constexpr double MillimetresPerInch = 25.4;

    //! `labels` and `scales` give each machine variable's address and the
    //! factor from its NC unit to the model's; both outlive the run.
    ZELKinNCPlyRun(ZELKinNCPlyFile& ply, const QStringList& labels, const QVector<double>& scales);

    void Run(unsigned lineNumber, const QString& text);

    //! A stop or a strange code counts only from the first motion line to
    //! the last: the start-up and the end of the ply stop the program by
    //! design.
    void Finish();

private:
    void ReadComment(unsigned lineNumber, const QString& line);
    void LeaveCourseMode();
    bool Preset(unsigned lineNumber, const QString& line);
    void Move(unsigned lineNumber, const QString& line);
    void ReadCode(unsigned lineNumber, const ZELKinNCWords::Word& word);
    void ReadFeed(unsigned lineNumber, const ZELKinNCWords::Word& word);
    bool ReadAxis(unsigned lineNumber, const ZELKinNCWords::Word& word, int axis);
    bool RequireNumber(unsigned lineNumber, const ZELKinNCWords::Word& word);
    void CheckNotation(unsigned lineNumber, QStringView name, QStringView number);
    ZELKinNCIrregularity Irregularity(const QString& check, unsigned lineNumber, const QString& subject,
                                      const QString& message) const;
    int LinkIndex() const;

    ZELKinNCPlyFile& m_ply;
    const QStringList& m_labels;
    const QVector<double>& m_scales;
    QVector<double> m_values;
    //! Codes that would be irregular between motion lines.
    QList<ZELKinNCIrregularity> m_codes;
    double m_feedrate = std::numeric_limits<double>::quiet_NaN();
    int m_course = 0;
    bool m_rapid = false;
    bool m_alongCourse = false;
    bool m_offPartPointToCome = false;
    bool m_courseLeft = false;
};

#endif // ZELKINNCPLYRUN_P_H
