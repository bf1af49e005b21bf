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
