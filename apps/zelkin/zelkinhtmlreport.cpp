#include "zelkinhtmlreport.h"

#include <zelkinafpmachine.h>
#include <zelkinvariable.h>
#include <zelkinverifysummary.h>

#include <QFileInfo>
#include <QStringList>
#include <QVector>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace {

// Decimals kept in the inlined data: far below what a plot can show, far
// above what makes the page large.
constexpr int kLengthDecimals = 2;
constexpr int kLinearDecimals = 3;
constexpr int kRotaryDecimals = 4;

// The page is kept in three pieces (each below the 16 KB that some
// compilers allow a single string literal): its style, the trap that counts
// script errors, installed before anything else runs, and the plotting.

const char* const kStyle = R"css(
:root { color-scheme: light; }
body { margin: 0; padding: 24px 28px 48px; background: #f4f6f8; color: #1d232a;
       font: 14px/1.45 system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", Arial, sans-serif; }
header, section.ply { max-width: 1360px; margin: 0 auto 28px; padding: 18px 22px; background: #fff;
                      border: 1px solid #d9dee3; border-radius: 6px; }
h1 { font-size: 22px; margin: 0 0 10px; }
h2 { font-size: 18px; margin: 0 0 6px; }
h3 { font-size: 15px; margin: 16px 0 6px; }
p { margin: 6px 0; }
.result { display: inline-block; padding: 3px 12px; border-radius: 4px; color: #fff;
          font-size: 16px; font-weight: 700; }
.result.pass { background: #2e7d32; }
.result.fail { background: #c62828; }
.result.warn { background: #b26a00; }
.note { color: #56606b; }
nav a { margin-right: 14px; color: #1f5fbf; }
table { border-collapse: collapse; font-variant-numeric: tabular-nums; }
table.facts { margin: 10px 0; }
table.facts th { padding: 2px 16px 2px 0; color: #56606b; font-weight: 600; text-align: left; vertical-align: top; }
table.facts td { padding: 2px 0; word-break: break-all; }
table.summary, table.findings { margin: 8px 0 12px; }
table.summary th, table.summary td, table.findings th, table.findings td { padding: 3px 8px;
                                                                           border: 1px solid #d9dee3; }
table.summary th, table.findings th { background: #eef1f4; font-weight: 600; }
table.summary td { text-align: right; }
table.findings td { vertical-align: top; }
table.findings tr.warning td { background: #fff8e1; }
table.findings td.where { font: 12px ui-monospace, "DejaVu Sans Mono", Menlo, Consolas, monospace;
                          word-break: break-all; }
.legend { display: flex; flex-wrap: wrap; gap: 6px 22px; margin: 8px 0 10px; color: #3c4650; font-size: 13px; }
.legend .key { display: inline-block; width: 30px; height: 0; margin-right: 6px; vertical-align: middle; }
.key.course { border-top: 3px solid #1f5fbf;
              border-image: linear-gradient(90deg, #1f5fbf 0 33%, #2e8b57 33% 66%, #7b4fbf 66%) 1; }
.key.link { border-top: 2px dashed #8d949c; }
.key.limit { border-top: 2px dashed #c62828; }
.legend .key.finding { width: 0; margin: 0 6px 0 2px; border-left: 6px solid transparent;
                       border-right: 6px solid transparent; border-bottom: 10px solid #d32f2f; }
.plots { display: grid; grid-template-columns: repeat(2, minmax(0, 1fr)); gap: 14px; }
figure.plot { margin: 0; padding: 6px 8px 2px; border: 1px solid #e3e7eb; border-radius: 4px; background: #fff; }
figure.plot.wide { grid-column: 1 / -1; }
figcaption { font-size: 13px; }
figcaption .note { margin-left: 10px; }
svg { display: block; width: 100%; height: auto; }
svg text { font: 11px system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", Arial, sans-serif;
           fill: #3c4650; }
svg text.axis-label { font-size: 12px; fill: #1d232a; }
svg text.empty { font-size: 13px; fill: #56606b; }
svg text.limit-label { fill: #c62828; }
svg .grid { stroke: #e6e9ed; stroke-width: 1; }
svg .frame { fill: none; stroke: #aab2ba; }
svg .limit { stroke: #c62828; stroke-width: 1.2; stroke-dasharray: 6 4; }
svg path.finding { fill: #d32f2f; }
svg circle.finding { fill: none; stroke: #d32f2f; stroke-width: 1.8; }
details > summary { cursor: pointer; font-weight: 600; }
)css";

const char* const kErrorTrap = R"js(
window.onerror = function () {
  window.zelkinScriptErrors = (window.zelkinScriptErrors || 0) + 1;
  if (document.body)
    document.body.setAttribute('data-script-errors', String(window.zelkinScriptErrors));
  return false;
};
)js";

const char* const kPlotting = R"js(
(function () {
  'use strict';

  var COURSE_COLOURS = ['#1f5fbf', '#2e8b57', '#7b4fbf', '#b8660b', '#0f7f8a', '#b03a72'];
  var LINK_COLOUR = '#8d949c';
  var AXIS_PLOT = {width: 660, height: 250};
  var TOP_VIEW = {width: 1340, lowest: 200, highest: 480};
  var MARGIN = {left: 80, right: 26, top: 12, bottom: 56};
  // Findings stand in a strip of their own under the frame, clear of the
  // values and the limit labels.
  var RUG = 11;
  var LENGTH_LABEL = 'path length of the roller centre (mm)';

  function isNumber(value) {
    return typeof value === 'number' && isFinite(value);
  }

  function escapeText(text) {
    return String(text).replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/>/g, '&gt;').replace(/"/g, '&quot;');
  }

  function pixel(value) {
    return value.toFixed(1);
  }

  // 1, 2 or 5 times a power of ten, so that tick labels stay short.
  function niceStep(span, most) {
    var raw = span / Math.max(1, most);
    var power = Math.pow(10, Math.floor(Math.log10(raw)));
    var factors = [1, 2, 5];
    for (var i = 0; i < factors.length; i++) {
      if (factors[i] * power >= raw)
        return factors[i] * power;
    }
    return 10 * power;
  }

  function ticksOf(range, most) {
    var step = niceStep(range.high - range.low, most);
    var values = [];
    for (var k = Math.ceil(range.low / step - 1e-9); k * step <= range.high + step * 1e-9; k++)
      values.push(k * step);
    return {values: values, step: step};
  }

  function tickText(value, step) {
    var decimals = Math.min(6, Math.max(0, Math.ceil(-Math.log10(step) - 1e-9)));
    var text = value.toFixed(decimals);
    return /^-0(\.0+)?$/.test(text) ? text.substring(1) : text;
  }

  function extentOf(values) {
    var low = Infinity;
    var high = -Infinity;
    values.forEach(function (value) {
      if (!isNumber(value))
        return;
      low = Math.min(low, value);
      high = Math.max(high, value);
    });
    return low <= high ? {low: low, high: high} : null;
  }

  // The extent widened by a margin, so that no line runs along the frame;
  // a flat series gets a span of its own.
  function paddedRange(extent, minimumSpan) {
    if (!extent)
      return {low: 0, high: 1};
    var span = Math.max(extent.high - extent.low, minimumSpan);
    var middle = (extent.low + extent.high) / 2;
    return {low: middle - span * 0.55, high: middle + span * 0.55};
  }

  function Frame(size, xRange, yRange) {
    this.size = size;
    this.left = MARGIN.left;
    this.right = size.width - MARGIN.right;
    this.top = MARGIN.top;
    this.bottom = size.height - MARGIN.bottom;
    this.xRange = xRange;
    this.yRange = yRange;
  }

  Frame.prototype.x = function (value) {
    var range = this.xRange;
    return pixel(this.left + (value - range.low) / (range.high - range.low) * (this.right - this.left));
  };

  Frame.prototype.y = function (value) {
    var range = this.yRange;
    return pixel(this.bottom - (value - range.low) / (range.high - range.low) * (this.bottom - this.top));
  };

  function line(className, x1, y1, x2, y2) {
    return '<line class="' + className + '" x1="' + x1 + '" y1="' + y1 + '" x2="' + x2 + '" y2="' + y2 + '"/>';
  }

  function text(className, x, y, anchor, content, transform) {
    return '<text class="' + className + '" x="' + x + '" y="' + y + '" text-anchor="' + anchor + '"' +
        (transform ? ' transform="' + transform + '"' : '') + '>' + escapeText(content) + '</text>';
  }

  // Grid, tick labels and axis labels; ticks are spaced for their labels
  // to stand apart.
  function gridOf(frame, xLabel, yLabel) {
    var parts = [];
    var xTicks = ticksOf(frame.xRange, Math.floor((frame.right - frame.left) / 90));
    var yTicks = ticksOf(frame.yRange, Math.floor((frame.bottom - frame.top) / 34));
    xTicks.values.forEach(function (value) {
      var x = frame.x(value);
      parts.push(line('grid', x, frame.top, x, frame.bottom));
      parts.push(text('tick', x, frame.bottom + RUG + 15, 'middle', tickText(value, xTicks.step)));
    });
    yTicks.values.forEach(function (value) {
      var y = frame.y(value);
      parts.push(line('grid', frame.left, y, frame.right, y));
      parts.push(text('tick', frame.left - 7, Number(y) + 4, 'end', tickText(value, yTicks.step)));
    });
    parts.push('<rect class="frame" x="' + frame.left + '" y="' + frame.top + '" width="' +
               (frame.right - frame.left) + '" height="' + (frame.bottom - frame.top) + '"/>');
    var middleX = (frame.left + frame.right) / 2;
    var middleY = (frame.top + frame.bottom) / 2;
    parts.push(text('axis-label', middleX, frame.size.height - 8, 'middle', xLabel));
    parts.push(text('axis-label', 16, middleY, 'middle', yLabel, 'rotate(-90 16 ' + middleY + ')'));
    return parts.join('');
  }

  function emptyNote(frame, content) {
    return text('empty', (frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2, 'middle', content);
  }

  function svgOf(size, content) {
    return '<svg viewBox="0 0 ' + size.width + ' ' + size.height + '" role="img">' + content + '</svg>';
  }

  function isCourseLine(ply, sample) {
    return ply.a[sample] === 1;
  }

  function strokeOf(ply, sample) {
    if (!isCourseLine(ply, sample))
      return 'stroke="' + LINK_COLOUR + '" stroke-width="1.3" stroke-dasharray="5 4"';
    var colour = COURSE_COLOURS[(Math.max(1, ply.c[sample]) - 1) % COURSE_COLOURS.length];
    return 'stroke="' + colour + '" stroke-width="1.7"';
  }

  function stretchName(ply, sample) {
    return isCourseLine(ply, sample) ? 'course ' + ply.c[sample] : 'link';
  }

  // The series as paths, one per run of segments drawn alike. A segment is
  // drawn as the line it ends on: that line's move makes it. A value
  // missing breaks the path.
  function seriesOf(frame, ply, samples, xs, ys) {
    var paths = [];
    var stroke = null;
    var name = '';
    var d = '';
    function close() {
      if (d)
        paths.push('<path fill="none" ' + stroke + ' d="' + d + '"><title>' + escapeText(name) + '</title></path>');
      d = '';
    }
    for (var j = 1; j < samples.length; j++) {
      if (!isNumber(xs[j - 1]) || !isNumber(ys[j - 1]) || !isNumber(xs[j]) || !isNumber(ys[j])) {
        close();
        continue;
      }
      var segmentStroke = strokeOf(ply, samples[j]);
      if (segmentStroke !== stroke || stretchName(ply, samples[j]) !== name) {
        close();
        stroke = segmentStroke;
        name = stretchName(ply, samples[j]);
      }
      if (!d)
        d = 'M' + frame.x(xs[j - 1]) + ' ' + frame.y(ys[j - 1]);
      d += 'L' + frame.x(xs[j]) + ' ' + frame.y(ys[j]);
    }
    close();
    return paths.join('');
  }

  function findingTitle(finding) {
    return '<title>' + escapeText(finding.text) + '</title>';
  }

  // A limit is drawn when it lies near the values; one far off would
  // squeeze them into a line, so it is only named in the caption.
  function limitsOf(axis, extent) {
    var limits = [];
    [{name: 'min', value: axis.min}, {name: 'max', value: axis.max}].forEach(function (limit) {
      if (!isNumber(limit.value))
        return;
      var near = true;
      if (extent) {
        var span = Math.max(extent.high - extent.low, 1);
        near = limit.value >= extent.low - span && limit.value <= extent.high + span;
      }
      limit.shown = near;
      limits.push(limit);
    });
    return limits;
  }

  function limitLine(frame, limit, unit) {
    var y = frame.y(limit.value);
    var label = limit.name + ' ' + limit.value + ' ' + unit;
    // The maximum is named below its line at the right, the minimum above
    // its line at the left, so that the two never meet.
    var labelText = limit.name === 'max' ? text('limit-label', frame.right - 6, Number(y) + 13, 'end', label)
                                         : text('limit-label', frame.left + 6, Number(y) - 5, 'start', label);
    return line('limit', frame.left, y, frame.right, y) + labelText;
  }

  function limitNote(limits, unit) {
    if (limits.length === 0)
      return 'no limits';
    return 'limits: ' + limits.map(function (limit) {
      return limit.name + ' ' + limit.value + ' ' + unit + (limit.shown ? '' : ' (out of view)');
    }).join(', ');
  }

  function axisPlot(ply, axis, axisIndex) {
    var lengths = axis.i.map(function (sample) { return ply.s[sample]; });
    var extent = extentOf(axis.v);
    var limits = limitsOf(axis, extent);
    var shown = limits.filter(function (limit) { return limit.shown; });
    var yRange = paddedRange(extentOf(axis.v.concat(shown.map(function (limit) { return limit.value; }))), 1);
    var frame = new Frame(AXIS_PLOT, {low: 0, high: Math.max(ply.length, 1)}, yRange);
    var parts = [gridOf(frame, LENGTH_LABEL, axis.label + ' (' + axis.unit + ')')];
    shown.forEach(function (limit) { parts.push(limitLine(frame, limit, axis.unit)); });
    parts.push(extent ? seriesOf(frame, ply, axis.i, lengths, axis.v) : emptyNote(frame, 'no values'));
    ply.findings.forEach(function (finding) {
      if (!isNumber(finding.s))
        return;
      var x = frame.x(finding.s);
      parts.push('<path class="finding" d="M' + x + ' ' + (frame.bottom + 1) + 'l4.5 ' + (RUG - 2) + 'h-9z">' +
                 findingTitle(finding) + '</path>');
      if (finding.axis === axisIndex && isNumber(finding.v))
        parts.push('<circle class="finding" cx="' + x + '" cy="' + frame.y(finding.v) + '" r="5">' +
                   findingTitle(finding) + '</circle>');
    });
    return {
      wide: false,
      caption: '<b>' + escapeText(axis.label) + '</b> ' + escapeText(axis.kind) + ' (' + escapeText(axis.unit) +
          ')<span class="note">' + escapeText(limitNote(limits, axis.unit)) + '</span>',
      svg: svgOf(AXIS_PLOT, parts.join(''))
    };
  }

  // Both ranges widened to one scale, so that the view from above keeps
  // the part's shape.
  function sameScale(frame) {
    var perPixel = Math.max((frame.xRange.high - frame.xRange.low) / (frame.right - frame.left),
                            (frame.yRange.high - frame.yRange.low) / (frame.bottom - frame.top));
    function widened(range, pixels) {
      var middle = (range.low + range.high) / 2;
      return {low: middle - perPixel * pixels / 2, high: middle + perPixel * pixels / 2};
    }
    frame.xRange = widened(frame.xRange, frame.right - frame.left);
    frame.yRange = widened(frame.yRange, frame.bottom - frame.top);
  }

  // As tall as the part's shape asks, within bounds.
  function topViewSize(xRange, yRange) {
    var width = TOP_VIEW.width - MARGIN.left - MARGIN.right;
    var height = width * (yRange.high - yRange.low) / (xRange.high - xRange.low);
    height = Math.min(TOP_VIEW.highest, Math.max(TOP_VIEW.lowest, height));
    return {width: TOP_VIEW.width, height: Math.round(height) + MARGIN.top + MARGIN.bottom};
  }

  // The view is fitted to the courses and the findings: the links run to
  // and from the machine's home, far off, and are cut at the frame.
  function topView(ply) {
    var xs = ply.top.map(function (sample) { return ply.x[sample]; });
    var ys = ply.top.map(function (sample) { return ply.y[sample]; });
    var fitted = ply.top.filter(function (sample) { return isCourseLine(ply, sample); });
    if (fitted.length === 0)
      fitted = ply.top;
    var xExtent = extentOf(fitted.map(function (sample) { return ply.x[sample]; })
                               .concat(ply.findings.map(function (finding) { return finding.x; })));
    var yExtent = extentOf(fitted.map(function (sample) { return ply.y[sample]; })
                               .concat(ply.findings.map(function (finding) { return finding.y; })));
    var xRange = paddedRange(xExtent, 1);
    var yRange = paddedRange(yExtent, 1);
    var size = topViewSize(xRange, yRange);
    var frame = new Frame(size, xRange, yRange);
    sameScale(frame);
    var clip = 'view-' + ply.number;
    var parts = [gridOf(frame, 'roller centre X (mm)', 'roller centre Y (mm)')];
    parts.push('<clipPath id="' + clip + '"><rect x="' + frame.left + '" y="' + frame.top + '" width="' +
               (frame.right - frame.left) + '" height="' + (frame.bottom - frame.top) + '"/></clipPath>');
    var series = '<g clip-path="url(#' + clip + ')">' + seriesOf(frame, ply, ply.top, xs, ys) + '</g>';
    parts.push(xExtent && yExtent ? series : emptyNote(frame, 'no positions'));
    ply.findings.forEach(function (finding) {
      if (isNumber(finding.x) && isNumber(finding.y))
        parts.push('<circle class="finding" cx="' + frame.x(finding.x) + '" cy="' + frame.y(finding.y) +
                   '" r="4">' + findingTitle(finding) + '</circle>');
    });
    return {
      wide: true,
      caption: '<b>Seen from above</b> the roller centre\'s path, X and Y (mm) at one scale' +
          '<span class="note">fitted to the courses; the links run on out of view</span>',
      svg: svgOf(size, parts.join(''))
    };
  }

  function plotsOf(ply) {
    return [topView(ply)].concat(ply.axes.map(function (axis, index) { return axisPlot(ply, axis, index); }));
  }

  function show(box, plot) {
    var figure = document.createElement('figure');
    figure.className = plot.wide ? 'plot wide' : 'plot';
    figure.innerHTML = '<figcaption>' + plot.caption + '</figcaption>' + plot.svg;
    box.appendChild(figure);
  }

  var data = JSON.parse(document.getElementById('zelkin-report-data').textContent);
  var body = document.body;
  var drawn = 0;
  body.setAttribute('data-plots-expected', String(data.plotsExpected));
  body.setAttribute('data-plots-drawn', '0');
  data.plies.forEach(function (ply) {
    var box = document.getElementById('plots-' + ply.number);
    plotsOf(ply).forEach(function (plot) {
      show(box, plot);
      drawn += 1;
      body.setAttribute('data-plots-drawn', String(drawn));
    });
  });
})();
)js";

// A machine variable as its plot shows it.
struct PlotAxis
{
    //! In the verified line's axes.
    int index = 0;
    QString label;
    QString kind;
    QString unit;
    //! From model units (mm, rad) to the plot's (mm, deg).
    double scale = 1.0;
    int decimals = kLinearDecimals;
    //! In the plot's units; NaN for none.
    double minimum = 0.0;
    double maximum = 0.0;
};

QString KindOf(const ZELKinVariable& variable, const ZELKinAFPMachine& machine)
{
    if (variable.GetType() == ZELKinVariable::Rotary)
        return QStringLiteral("rotary axis");
    if (&variable == machine.GetMaterialVariable())
        return QStringLiteral("material axis");
    if (variable.GetLabel().size() == 1 && QStringLiteral("XYZ").contains(variable.GetLabel()))
        return QStringLiteral("slide position");
    return QStringLiteral("linear axis");
}

QList<PlotAxis> PlotAxesOf(const ZELKinAFPMachine& machine)
{
    QList<PlotAxis> axes;
    const QList<ZELKinVariable*> variables = machine.GetVariables();
    for (int i = 0; i < variables.size(); ++i) {
        const ZELKinVariable* variable = variables.at(i);
        if (!variable)
            continue;
        const bool rotary = variable->GetType() == ZELKinVariable::Rotary;
        const double scale = rotary ? qRadiansToDegrees(1.0) : 1.0;
        axes.append(PlotAxis{i, variable->GetLabel(), KindOf(*variable, machine),
                             rotary ? QStringLiteral("deg") : QStringLiteral("mm"), scale,
                             rotary ? kRotaryDecimals : kLinearDecimals, variable->GetMinimum() * scale,
                             variable->GetMaximum() * scale});
    }
    return axes;
}

QString Html(const QString& text)
{
    return text.toHtmlEscaped();
}

// Also escapes '<', so that no string can end the script element that
// holds the data.
QString JsonString(const QString& text)
{
    QString json = QStringLiteral("\"");
    for (const QChar c : text) {
        if (c == QLatin1Char('"') || c == QLatin1Char('\\'))
            json += QLatin1Char('\\') + c;
        else if (c.unicode() < 0x20 || c == QLatin1Char('<') || c.unicode() == 0x2028 || c.unicode() == 0x2029)
            json += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            json += c;
    }
    return json + QLatin1Char('"');
}

QString JsonNumber(double value, int decimals)
{
    if (!std::isfinite(value))
        return QStringLiteral("null");
    QString text = QString::number(value, 'f', decimals);
    if (text.contains(QLatin1Char('.'))) {
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
    }
    return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

QString JsonArray(const QStringList& items)
{
    return QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']');
}

template <typename Value>
QString JsonArrayOf(const QList<int>& samples, Value valueOf)
{
    QStringList items;
    items.reserve(samples.size());
    for (const int sample : samples)
        items.append(valueOf(sample));
    return JsonArray(items);
}

QList<int> AllIndices(int count)
{
    QList<int> indices(count);
    std::iota(indices.begin(), indices.end(), 0);
    return indices;
}

QList<int> Merged(const QList<int>& a, const QList<int>& b)
{
    QList<int> merged;
    merged.reserve(a.size() + b.size());
    std::set_union(a.cbegin(), a.cend(), b.cbegin(), b.cend(), std::back_inserter(merged));
    return merged;
}

int BucketOf(double pathLength, double totalLength)
{
    if (!(totalLength > 0.0))
        return 0;
    const int bucket = int(pathLength / totalLength * ZELKinHtmlReport::GetMaxBuckets());
    return std::clamp(bucket, 0, ZELKinHtmlReport::GetMaxBuckets() - 1);
}

// What a plot keeps of one series: every line when they are few; otherwise,
// in each stretch of equal path length, the lines with the smallest and the
// largest value, so that no peak is lost, and the first line without one,
// so that the plot still shows the gap; always the first and the last line.
QList<int> KeptLines(const QList<ZELKinVerifiedLine>& lines, const QVector<double>& values)
{
    if (lines.size() <= ZELKinHtmlReport::GetMaxBuckets())
        return AllIndices(int(lines.size()));
    struct Bucket
    {
        int lowest = -1;
        int highest = -1;
        int gap = -1;
    };
    QVector<Bucket> buckets(ZELKinHtmlReport::GetMaxBuckets());
    const double totalLength = lines.last().pathLength;
    for (int i = 0; i < lines.size(); ++i) {
        Bucket& bucket = buckets[BucketOf(lines.at(i).pathLength, totalLength)];
        const double value = values.at(i);
        if (std::isnan(value)) {
            if (bucket.gap < 0)
                bucket.gap = i;
            continue;
        }
        if (bucket.lowest < 0 || value < values.at(bucket.lowest))
            bucket.lowest = i;
        if (bucket.highest < 0 || value > values.at(bucket.highest))
            bucket.highest = i;
    }
    QList<int> kept{0, int(lines.size()) - 1};
    for (const Bucket& bucket : buckets) {
        for (const int line : {bucket.lowest, bucket.highest, bucket.gap}) {
            if (line >= 0)
                kept.append(line);
        }
    }
    std::sort(kept.begin(), kept.end());
    kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
    return kept;
}

double ValueAt(const ZELKinVerifiedLine& line, const PlotAxis& axis)
{
    return axis.index < line.axes.size() ? line.axes.at(axis.index) * axis.scale : std::nan("");
}

QVector<double> ValuesOf(const QList<ZELKinVerifiedLine>& lines, const PlotAxis& axis)
{
    QVector<double> values;
    values.reserve(lines.size());
    for (const ZELKinVerifiedLine& line : lines)
        values.append(ValueAt(line, axis));
    return values;
}

QVector<double> CentreCoordinates(const QList<ZELKinVerifiedLine>& lines, double (ZELMathPoint::*coordinate)() const)
{
    QVector<double> values;
    values.reserve(lines.size());
    for (const ZELKinVerifiedLine& line : lines)
        values.append((line.centre.*coordinate)());
    return values;
}

// The motion line a finding is drawn at: its own line, or for a tow event
// the motion line before it, which the event follows.
int LineIndexOf(const QList<ZELKinVerifiedLine>& lines, unsigned findingLine)
{
    const auto after = std::upper_bound(
        lines.cbegin(), lines.cend(), findingLine,
        [](unsigned number, const ZELKinVerifiedLine& line) { return number < line.line; });
    return std::max(0, int(after - lines.cbegin()) - 1);
}

QString Where(const ZELKinVerifyPlace& place)
{
    return QStringLiteral("%1:%2").arg(place.file, QString::number(place.line));
}

QString Point(const ZELKinVerifyPlace& place)
{
    return place.point > 0 ? QString::number(place.point) : QStringLiteral("-");
}

// Red for a failure, amber for a pass with warnings, green for a clean pass.
QString ResultClass(const ZELKinVerification& verification)
{
    if (!verification.IsPassed())
        return QStringLiteral("fail");
    return verification.GetNumWarnings() > 0 ? QStringLiteral("warn") : QStringLiteral("pass");
}

// A warning does not fail the verification, and says so.
QString CheckOf(const ZELKinVerifyFinding& finding)
{
    return finding.warning ? finding.check + QStringLiteral(" (warning)") : finding.check;
}

QString FindingTitle(const ZELKinVerifyFinding& finding)
{
    return QStringLiteral("course %1, point %2, %3: %4: %5")
        .arg(QString::number(finding.place.course), Point(finding.place), Where(finding.place), CheckOf(finding),
             finding.message);
}

// A ply that fails along every course would make a page no browser opens in
// reasonable time: each ply shows and marks its first findings, and says how
// many it leaves to "zelkin verify --json".
constexpr int kFindingsShownPerPly = 500;

QList<ZELKinVerifyFinding> Shown(const QList<ZELKinVerifyFinding>& findings)
{
    return findings.mid(0, kFindingsShownPerPly);
}

QList<ZELKinVerifyFinding> FindingsOf(const ZELKinVerification& verification, const ZELKinVerifiedPly& ply)
{
    QList<ZELKinVerifyFinding> findings;
    for (const ZELKinVerifyFinding& finding : verification.findings) {
        if (finding.plyNumber == ply.plyNumber)
            findings.append(finding);
    }
    return findings;
}

int AxisNamed(const QList<PlotAxis>& axes, const QString& label)
{
    for (int i = 0; i < axes.size(); ++i) {
        if (axes.at(i).label == label)
            return i;
    }
    return -1;
}

QString FindingData(const ZELKinVerifyFinding& finding, const QList<ZELKinVerifiedLine>& lines,
                    const QList<PlotAxis>& axes)
{
    const int axis = AxisNamed(axes, finding.subject);
    double length = std::nan("");
    ZELMathPoint centre(std::nan(""), std::nan(""), std::nan(""));
    double value = std::nan("");
    if (!lines.isEmpty()) {
        const ZELKinVerifiedLine& line = lines.at(LineIndexOf(lines, finding.place.line));
        length = line.pathLength;
        centre = line.centre;
        if (axis >= 0)
            value = ValueAt(line, axes.at(axis));
    }
    const int decimals = axis >= 0 ? axes.at(axis).decimals : kLinearDecimals;
    return QStringLiteral("{\"s\":%1,\"x\":%2,\"y\":%3,\"axis\":%4,\"v\":%5,\"text\":%6}")
        .arg(JsonNumber(length, kLengthDecimals), JsonNumber(centre.GetX(), kLengthDecimals),
             JsonNumber(centre.GetY(), kLengthDecimals), QString::number(axis), JsonNumber(value, decimals),
             JsonString(FindingTitle(finding)));
}

struct KeptSeries
{
    QList<int> lines;
    QVector<double> values;
};

// One ply as the page's script reads it: the kept lines once, as columns
// (s path length, x and y of the roller centre, c course, a 1 along a
// course, n line number), and each plot as indices into them.
QString PlyData(const ZELKinVerifiedPly& ply, const QList<PlotAxis>& axes, const QList<ZELKinVerifyFinding>& findings)
{
    const QList<ZELKinVerifiedLine>& lines = ply.lines;
    QList<KeptSeries> series;
    QList<int> samples;
    for (const PlotAxis& axis : axes) {
        const QVector<double> values = ValuesOf(lines, axis);
        series.append(KeptSeries{KeptLines(lines, values), values});
        samples = Merged(samples, series.last().lines);
    }
    const QList<int> top = Merged(KeptLines(lines, CentreCoordinates(lines, &ZELMathPoint::GetX)),
                                  KeptLines(lines, CentreCoordinates(lines, &ZELMathPoint::GetY)));
    samples = Merged(samples, top);

    QVector<int> sampleOfLine(lines.size(), -1);
    for (int i = 0; i < samples.size(); ++i)
        sampleOfLine[samples.at(i)] = i;
    const auto toSamples = [&sampleOfLine](const QList<int>& kept) {
        return JsonArrayOf(kept, [&sampleOfLine](int line) { return QString::number(sampleOfLine.at(line)); });
    };

    QStringList axisData;
    for (int k = 0; k < axes.size(); ++k) {
        const PlotAxis& axis = axes.at(k);
        const KeptSeries& kept = series.at(k);
        axisData.append(
            QStringLiteral("{\"label\":%1,\"kind\":%2,\"unit\":%3,\"min\":%4,\"max\":%5,\"i\":%6,\"v\":%7}")
                .arg(JsonString(axis.label), JsonString(axis.kind), JsonString(axis.unit),
                     JsonNumber(axis.minimum, axis.decimals), JsonNumber(axis.maximum, axis.decimals),
                     toSamples(kept.lines), JsonArrayOf(kept.lines, [&](int line) {
                         return JsonNumber(kept.values.at(line), axis.decimals);
                     })));
    }
    QStringList findingData;
    for (const ZELKinVerifyFinding& finding : findings)
        findingData.append(FindingData(finding, lines, axes));

    const auto column = [&](auto valueOf) { return JsonArrayOf(samples, valueOf); };
    const auto coordinates = [&](double (ZELMathPoint::*coordinate)() const) {
        return column([&](int i) { return JsonNumber((lines.at(i).centre.*coordinate)(), kLengthDecimals); });
    };
    const QStringList members{
        QStringLiteral("\"number\":") + JsonString(ply.plyNumber),
        QStringLiteral("\"length\":") + JsonNumber(lines.isEmpty() ? 0.0 : lines.last().pathLength, kLengthDecimals),
        QStringLiteral("\"s\":") + column([&](int i) { return JsonNumber(lines.at(i).pathLength, kLengthDecimals); }),
        QStringLiteral("\"x\":") + coordinates(&ZELMathPoint::GetX),
        QStringLiteral("\"y\":") + coordinates(&ZELMathPoint::GetY),
        QStringLiteral("\"c\":") + column([&](int i) { return QString::number(lines.at(i).course); }),
        QStringLiteral("\"a\":") + column([&](int i) { return QString::number(lines.at(i).alongCourse ? 1 : 0); }),
        QStringLiteral("\"n\":") + column([&](int i) { return QString::number(lines.at(i).line); }),
        QStringLiteral("\"top\":") + toSamples(top),
        QStringLiteral("\"axes\":") + JsonArray(axisData),
        QStringLiteral("\"findings\":") + JsonArray(findingData)};
    return QLatin1Char('{') + members.join(QLatin1Char(',')) + QLatin1Char('}');
}

QString Row(const QStringList& cells, const QString& cellTag)
{
    QString row = QStringLiteral("<tr>");
    for (const QString& cell : cells)
        row += QStringLiteral("<%1>%2</%1>").arg(cellTag, cell);
    return row + QStringLiteral("</tr>\n");
}

QString Fact(const QString& name, const QString& value)
{
    return QStringLiteral("<tr><th>%1</th><td>%2</td></tr>\n").arg(Html(name), Html(value));
}

QString SummaryTable(const ZELKinVerifiedPly& ply)
{
    const QStringList headings = QStringList{QStringLiteral("courses")} + ZELKinVerifySummary::GetHeadings();
    const QStringList values = QStringList{QString::number(ply.courses)} + ZELKinVerifySummary::GetCells(ply);
    return QStringLiteral("<table class=\"summary\">\n") + Row(headings, QStringLiteral("th")) +
           Row(values, QStringLiteral("td")) + QStringLiteral("</table>\n");
}

QString Legend()
{
    return QStringLiteral(
        "<div class=\"legend\">"
        "<span><span class=\"key course\"></span>course lines, a colour per course</span>"
        "<span><span class=\"key link\"></span>link lines: approach, between courses, retract</span>"
        "<span><span class=\"key limit\"></span>axis limit</span>"
        "<span><span class=\"key finding\"></span>finding (a circle on the axis it is about and in the view "
        "from above; hover for its text)</span>"
        "</div>\n");
}

// A long list is folded, so that the plots of the next ply stay in reach.
constexpr int kFindingsShownOpen = 50;

QString FindingsTable(const QList<ZELKinVerifyFinding>& findings)
{
    if (findings.isEmpty())
        return QStringLiteral("<p class=\"note\">No findings.</p>\n");
    QString table = QStringLiteral("<details%1><summary>%2</summary>\n<table class=\"findings\">\n")
                        .arg(findings.size() <= kFindingsShownOpen ? QStringLiteral(" open") : QString(),
                             ZELKinVerifySummary::CountFindings(findings.size()));
    table += Row({QStringLiteral("ply"), QStringLiteral("course"), QStringLiteral("point"), QStringLiteral("file:line"),
                  QStringLiteral("check"), QStringLiteral("message")},
                 QStringLiteral("th"));
    for (const ZELKinVerifyFinding& finding : Shown(findings))
        table += QStringLiteral("<tr%7><td>%1</td><td>%2</td><td>%3</td><td class=\"where\">%4</td><td>%5</td>"
                                "<td>%6</td></tr>\n")
                     .arg(Html(finding.plyNumber), QString::number(finding.place.course), Point(finding.place),
                          Html(Where(finding.place)), Html(CheckOf(finding)), Html(finding.message),
                          finding.warning ? QStringLiteral(" class=\"warning\"") : QString());
    table += QStringLiteral("</table>\n");
    if (findings.size() > kFindingsShownPerPly)
        table += QStringLiteral("<p class=\"note\">The first %1 are listed and marked; 'zelkin verify --json' lists "
                                "all %2.</p>\n")
                     .arg(kFindingsShownPerPly)
                     .arg(findings.size());
    return table + QStringLiteral("</details>\n");
}

} // namespace

ZELKinHtmlReport::ZELKinHtmlReport(const ZELKinAFPMachine& machine, const ZELKinVerification& verification,
                                   const Sources& sources)
    : m_machine(machine)
    , m_verification(verification)
    , m_sources(sources)
{
}

QString ZELKinHtmlReport::ToHtml() const
{
    QString html = QStringLiteral(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        // The page loads nothing: the browser refuses any reference that
        // might have slipped in.
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        "style-src 'unsafe-inline'; script-src 'unsafe-inline'\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n");
    html += QStringLiteral("<title>zelkin report: %1, %2</title>\n")
                .arg(Html(QFileInfo(m_sources.toolpathPath).fileName()), Html(GetResult()));
    html += QStringLiteral("<script>") + QString::fromUtf8(kErrorTrap) + QStringLiteral("</script>\n");
    html += QStringLiteral("<style>") + QString::fromUtf8(kStyle) + QStringLiteral("</style>\n</head>\n<body>\n");
    html += GetHeader();
    for (const ZELKinVerifiedPly& ply : m_verification.plies)
        html += GetPlySection(ply);
    html += QStringLiteral("<script type=\"application/json\" id=\"zelkin-report-data\">") + GetData() +
            QStringLiteral("</script>\n");
    html += QStringLiteral("<script>") + QString::fromUtf8(kPlotting) + QStringLiteral("</script>\n");
    return html + QStringLiteral("</body>\n</html>\n");
}

QString ZELKinHtmlReport::GetResult() const
{
    return ZELKinVerifySummary::GetResult(m_verification);
}

int ZELKinHtmlReport::GetNumPlots() const
{
    const int perPly = int(PlotAxesOf(m_machine).size()) + 1;
    return int(m_verification.plies.size()) * perPly;
}

QString ZELKinHtmlReport::GetHeader() const
{
    QString header = QStringLiteral("<header>\n<h1>Verification of %1</h1>\n")
                         .arg(Html(QFileInfo(m_sources.toolpathPath).fileName()));
    header += QStringLiteral("<p class=\"result %1\">%2</p>\n").arg(ResultClass(m_verification), Html(GetResult()));
    header += QStringLiteral("<table class=\"facts\">\n");
    header += Fact(QStringLiteral("toolpath"), m_sources.toolpathPath);
    header += Fact(QStringLiteral("machine"), m_sources.machinePath);
    header += Fact(QStringLiteral("NC"), m_sources.ncPath);
    header += Fact(QStringLiteral("gates"), ZELKinVerifySummary::DescribeGates(m_verification.gates));
    header += QStringLiteral("</table>\n<nav>");
    for (const ZELKinVerifiedPly& ply : m_verification.plies)
        header += QStringLiteral("<a href=\"#ply-%1\">Ply %1: %2</a>").arg(Html(ply.plyNumber), Html(ply.procedure));
    header += QStringLiteral("</nav>\n");
    const QList<ZELKinVerifyFinding> outside = FindingsOf(m_verification, ZELKinVerifiedPly());
    if (!outside.isEmpty())
        header += QStringLiteral("<h3>Findings outside the ply files</h3>\n") + FindingsTable(outside);
    header += QStringLiteral(
        "<p class=\"note\">Plots show every motion line of a ply against the roller centre's path length: rotary "
        "axes in deg, linear axes in mm, X, Y and Z as slide positions. Link lines (approach, between courses, "
        "retract) are gated by their roller centre only; the probing file is not checked.</p>\n");
    return header + QStringLiteral("</header>\n");
}

QString ZELKinHtmlReport::GetPlySection(const ZELKinVerifiedPly& ply) const
{
    const QString number = Html(ply.plyNumber);
    QString section = QStringLiteral("<section class=\"ply\" id=\"ply-%1\">\n<h2>Ply %1: %2</h2>\n")
                          .arg(number, Html(ply.procedure));
    section += QStringLiteral("<p class=\"note\">%1</p>\n").arg(Html(ply.file));
    section += SummaryTable(ply);
    section += Legend();
    section += QStringLiteral("<div class=\"plots\" id=\"plots-%1\"></div>\n").arg(number);
    section += QStringLiteral("<h3>Findings</h3>\n") + FindingsTable(FindingsOf(m_verification, ply));
    return section + QStringLiteral("</section>\n");
}

QString ZELKinHtmlReport::GetData() const
{
    const QList<PlotAxis> axes = PlotAxesOf(m_machine);
    QStringList plies;
    for (const ZELKinVerifiedPly& ply : m_verification.plies)
        plies.append(PlyData(ply, axes, Shown(FindingsOf(m_verification, ply))));
    return QStringLiteral("{\"plotsExpected\":%1,\"plies\":%2}").arg(QString::number(GetNumPlots()), JsonArray(plies));
}
