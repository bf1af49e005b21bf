(function () {
  'use strict';

  var COURSE_COLOURS = ['#1f5fbf', '#2e8b57', '#7b4fbf', '#b8660b', '#0f7f8a', '#b03a72'];
  var LINK_COLOUR = '#8d949c';
  var AXIS_PLOT = {width: 660, height: 250};
  var TOP_VIEW = {width: 1340, lowest: 200, highest: 480};
  var OVERVIEW = {width: 1340, height: 118};
  var MARGIN = {left: 80, right: 26, top: 12, bottom: 56};
  // Findings stand in a strip of their own under the frame, clear of the
  // values and the limit labels.
  var RUG = 11;
  // Marks closer than this (px) would hide each other: they are drawn as
  // one, with their count.
  var MERGE = 4;
  // A series keeps at most this many of its lines per pixel column: the
  // first, the lowest, the highest and the last.
  var PER_COLUMN = 4;
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

  function plural(count, one, many) {
    return count + ' ' + (count === 1 ? one : many);
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

  Frame.prototype.xAt = function (value) {
    var range = this.xRange;
    return this.left + (value - range.low) / (range.high - range.low) * (this.right - this.left);
  };

  Frame.prototype.yAt = function (value) {
    var range = this.yRange;
    return this.bottom - (value - range.low) / (range.high - range.low) * (this.bottom - this.top);
  };

  Frame.prototype.x = function (value) {
    return pixel(this.xAt(value));
  };

  Frame.prototype.y = function (value) {
    return pixel(this.yAt(value));
  };

  Frame.prototype.valueAtX = function (x) {
    var range = this.xRange;
    return range.low + (x - this.left) / (this.right - this.left) * (range.high - range.low);
  };

  Frame.prototype.clip = function (id) {
    return '<clipPath id="' + id + '"><rect x="' + this.left + '" y="' + this.top + '" width="' +
        (this.right - this.left) + '" height="' + (this.bottom - this.top) + '"/></clipPath>';
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
    if (yLabel) {
      yTicks.values.forEach(function (value) {
        var y = frame.y(value);
        parts.push(line('grid', frame.left, y, frame.right, y));
        parts.push(text('tick', frame.left - 7, Number(y) + 4, 'end', tickText(value, yTicks.step)));
      });
    }
    parts.push('<rect class="frame" x="' + frame.left + '" y="' + frame.top + '" width="' +
               (frame.right - frame.left) + '" height="' + (frame.bottom - frame.top) + '"/>');
    var middleX = (frame.left + frame.right) / 2;
    var middleY = (frame.top + frame.bottom) / 2;
    parts.push(text('axis-label', middleX, frame.size.height - 8, 'middle', xLabel));
    if (yLabel)
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

  function courseColour(course) {
    return COURSE_COLOURS[(Math.max(1, course) - 1) % COURSE_COLOURS.length];
  }

  function strokeOf(ply, sample) {
    if (!isCourseLine(ply, sample))
      return 'stroke="' + LINK_COLOUR + '" stroke-width="1.3" stroke-dasharray="5 4"';
    return 'stroke="' + courseColour(ply.c[sample]) + '" stroke-width="1.7"';
  }

  function stretchName(ply, sample) {
    return isCourseLine(ply, sample) ? 'course ' + ply.c[sample] : 'link';
  }

  // The points of a series worth drawing at the frame's width: all when
  // they are few; else of each pixel column the first, the lowest, the
  // highest and the last, with every point where the line's style changes
  // or a value is missing, so that peaks, gaps and courses all stay.
  function thinned(frame, ply, points) {
    if (points.length <= PER_COLUMN * (frame.right - frame.left))
      return points;
    var kept = [];
    var group = null;
    function close() {
      if (!group)
        return;
      [group.first, group.lowest, group.highest, group.last].sort(function (a, b) { return a.order - b.order; })
          .forEach(function (point) {
            if (kept[kept.length - 1] !== point)
              kept.push(point);
          });
      group = null;
    }
    points.forEach(function (point) {
      if (!isNumber(point.y) || !isNumber(point.x)) {
        close();
        kept.push(point);
        return;
      }
      var column = Math.floor(frame.xAt(point.x));
      var name = stretchName(ply, point.sample);
      if (!group || group.column !== column || group.name !== name) {
        close();
        group = {column: column, name: name, first: point, lowest: point, highest: point, last: point};
        return;
      }
      if (point.y < group.lowest.y)
        group.lowest = point;
      if (point.y > group.highest.y)
        group.highest = point;
      group.last = point;
    });
    close();
    return kept;
  }

  // The series as paths, one per run of segments drawn alike. A segment is
  // drawn as the line it ends on: that line's move makes it. A value
  // missing breaks the path.
  function seriesOf(frame, ply, points) {
    var paths = [];
    var stroke = null;
    var name = '';
    var d = '';
    function close() {
      if (d)
        paths.push('<path fill="none" ' + stroke + ' d="' + d + '"><title>' + escapeText(name) + '</title></path>');
      d = '';
    }
    for (var j = 1; j < points.length; j++) {
      var from = points[j - 1];
      var to = points[j];
      if (!isNumber(from.x) || !isNumber(from.y) || !isNumber(to.x) || !isNumber(to.y)) {
        close();
        continue;
      }
      var segmentStroke = strokeOf(ply, to.sample);
      if (segmentStroke !== stroke || stretchName(ply, to.sample) !== name) {
        close();
        stroke = segmentStroke;
        name = stretchName(ply, to.sample);
      }
      if (!d)
        d = 'M' + frame.x(from.x) + ' ' + frame.y(from.y);
      d += 'L' + frame.x(to.x) + ' ' + frame.y(to.y);
    }
    close();
    return paths.join('');
  }

  // Marks that would overlap, taken in order, made into one: each group
  // stands where its first mark does and counts all of its findings.
  function grouped(items, near) {
    var groups = [];
    items.forEach(function (item) {
      var group = null;
      for (var g = groups.length - 1; g >= 0 && g >= groups.length - 8; g--) {
        if (near(groups[g].first, item)) {
          group = groups[g];
          break;
        }
      }
      if (!group) {
        group = {first: item, marks: [], count: 0, warnings: 0};
        groups.push(group);
      }
      group.marks.push(item.mark);
      group.count += item.mark.count;
      group.warnings += item.mark.warning ? item.mark.count : 0;
    });
    return groups;
  }

  function markTitle(group) {
    var first = group.marks[0];
    var last = group.marks[group.marks.length - 1];
    if (group.count === 1)
      return '<title>' + escapeText(first.text) + '</title>';
    var lines = first.line === last.last ? 'line ' + first.line : 'lines ' + first.line + ' to ' + last.last;
    return '<title>' + escapeText(plural(group.count, 'finding', 'findings') + ' on ' + lines + '; the first: ' +
                                  first.text) + '</title>';
  }

  function markClass(group) {
    return group.warnings === group.count ? 'finding warning' : 'finding';
  }

  function countLabel(group, x, y) {
    return group.count > 1 ? text('mark-count', x, y, 'start', '\u00d7' + group.count) : '';
  }

  // The marks under the frame, at the path length of their lines.
  function rugOf(frame, marks) {
    var items = marks.map(function (mark) { return {x: frame.xAt(mark.s), mark: mark}; });
    var groups = grouped(items, function (first, item) { return item.x - first.x <= MERGE; });
    var parts = groups.map(function (group) {
      var x = pixel(group.first.x);
      return '<path class="' + markClass(group) + '" d="M' + x + ' ' + (frame.bottom + 1) + 'l4.5 ' + (RUG - 2) +
          'h-9z">' + markTitle(group) + '</path>' + countLabel(group, group.first.x + 5, frame.bottom + RUG);
    });
    return {svg: parts.join(''), groups: groups};
  }

  // Circles at a position of the plot, one per group of nearby marks.
  function circlesOf(items, radius) {
    var groups = grouped(items, function (first, item) {
      return Math.abs(item.x - first.x) <= MERGE && Math.abs(item.y - first.y) <= MERGE;
    });
    return groups.map(function (group) {
      var x = group.first.x;
      var y = group.first.y;
      return '<circle class="' + markClass(group) + '" cx="' + pixel(x) + '" cy="' + pixel(y) + '" r="' + radius +
          '">' + markTitle(group) + '</circle>' + countLabel(group, x + radius + 2, y - radius);
    }).join('');
  }

  function lengthsOf(groups) {
    return groups.map(function (group) { return group.first.mark.s.toFixed(2); }).join(' ');
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

  // The checks keep, per course, the axis that came nearest its speed
  // limit and how near: an axis's speed is known where it was that axis.
  function speedNote(ply, view, axis) {
    var fastest = null;
    var measured = false;
    ply.courses.forEach(function (course) {
      var speed = course.speed;
      if (!speed || !inView(view, course.course))
        return;
      measured = true;
      if (speed.axis === axis.label && (!fastest || speed.percent > fastest.speed.percent))
        fastest = {course: course.course, speed: speed};
    });
    var name = axis.label + ' speed %';
    if (!measured)
      return name + ': no speed measured';
    if (!fastest)
      return name + ': below that of the axis nearest its limit in each course';
    return name + ': ' + fastest.speed.percent + ' of its limit at most (course ' + fastest.course + ', line ' +
        fastest.speed.line + ')';
  }

  // What the plots show: the whole ply, or the courses from `from` to `to`
  // with the line before them, whose move leads into the first.
  function inView(view, course) {
    return !view.courses || (course >= view.courses.from && course <= view.courses.to);
  }

  function viewOf(ply, courses) {
    var count = ply.s.length;
    if (!courses)
      return {courses: null, first: 0, last: count - 1, low: 0, high: Math.max(ply.length, 1)};
    var first = -1;
    var last = -1;
    for (var i = 0; i < count; i++) {
      if (ply.c[i] >= courses.from && ply.c[i] <= courses.to) {
        if (first < 0)
          first = i;
        last = i;
      }
    }
    if (first < 0)
      return {courses: courses, first: 0, last: -1, low: 0, high: 1, empty: true};
    first = Math.max(0, first - 1);
    var low = ply.s[first];
    var high = ply.s[last];
    return {courses: courses, first: first, last: last, low: low, high: high > low ? high : low + 1};
  }

  function describeView(view) {
    if (!view.courses)
      return 'the whole ply';
    return view.courses.from === view.courses.to ? 'course ' + view.courses.from
                                                 : 'courses ' + view.courses.from + ' to ' + view.courses.to;
  }

  function marksInView(ply, view) {
    if (view.empty)
      return [];
    return ply.marks.filter(function (mark) { return mark.s >= view.low && mark.s <= view.high; });
  }

  // The samples of a series (indices into the ply's columns, in order)
  // that fall in the view.
  function samplesInView(samples, view) {
    return samples.filter(function (sample) { return sample >= view.first && sample <= view.last; });
  }

  function axisPlot(ply, axis, axisIndex, view) {
    var values = {};
    axis.i.forEach(function (sample, k) { values[sample] = axis.v[k]; });
    var samples = samplesInView(axis.i, view);
    var points = samples.map(function (sample, order) {
      return {sample: sample, order: order, x: ply.s[sample], y: values[sample]};
    });
    var extent = extentOf(points.map(function (point) { return point.y; }));
    var limits = limitsOf(axis, extent);
    var shown = limits.filter(function (limit) { return limit.shown; });
    var yRange = paddedRange(extentOf(points.map(function (point) { return point.y; })
                                          .concat(shown.map(function (limit) { return limit.value; }))), 1);
    var frame = new Frame(AXIS_PLOT, {low: view.low, high: view.high}, yRange);
    var clip = 'clip-' + ply.number + '-' + axisIndex;
    var parts = [gridOf(frame, LENGTH_LABEL, axis.label + ' (' + axis.unit + ')'), frame.clip(clip)];
    shown.forEach(function (limit) { parts.push(limitLine(frame, limit, axis.unit)); });
    parts.push(extent ? '<g clip-path="url(#' + clip + ')">' + seriesOf(frame, ply, thinned(frame, ply, points)) +
                            '</g>'
                      : emptyNote(frame, 'no values'));
    var marks = marksInView(ply, view);
    var rug = rugOf(frame, marks);
    parts.push(rug.svg);
    var onAxis = [];
    marks.forEach(function (mark) {
      mark.axes.forEach(function (entry) {
        if (entry[0] === axisIndex && isNumber(entry[1]))
          onAxis.push({x: frame.xAt(mark.s), y: frame.yAt(entry[1]), mark: mark});
      });
    });
    parts.push(circlesOf(onAxis, 5));
    return {
      name: 'axis-' + axis.label,
      wide: false,
      marks: lengthsOf(rug.groups),
      range: frame.xRange,
      caption: '<b>' + escapeText(axis.label) + '</b> ' + escapeText(axis.kind) + ' (' + escapeText(axis.unit) +
          ')<span class="note">' + escapeText(limitNote(limits, axis.unit)) + '</span><span class="note speed">' +
          escapeText(speedNote(ply, view, axis)) + '</span>',
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

  // Points closer than a pixel to the last one kept add nothing to a path.
  function thinnedAbove(frame, ply, points) {
    var kept = [];
    var last = null;
    points.forEach(function (point) {
      var x = frame.xAt(point.x);
      var y = frame.yAt(point.y);
      var keep = !last || !isNumber(x) || !isNumber(y) || !isNumber(last.x) || !isNumber(last.y) ||
          Math.abs(x - last.x) >= 1 || Math.abs(y - last.y) >= 1 ||
          stretchName(ply, point.sample) !== stretchName(ply, last.sample);
      if (keep) {
        kept.push(point);
        last = {x: x, y: y, sample: point.sample};
      }
    });
    if (points.length > 0 && kept[kept.length - 1] !== points[points.length - 1])
      kept.push(points[points.length - 1]);
    return kept;
  }

  // The view is fitted to the courses and the findings shown: the links
  // run to and from the machine's home, far off, and are cut at the frame.
  function topView(ply, view) {
    var samples = samplesInView(ply.top, view);
    var points = samples.map(function (sample) { return {sample: sample, x: ply.x[sample], y: ply.y[sample]}; });
    var marks = marksInView(ply, view);
    var fitted = points.filter(function (point) { return isCourseLine(ply, point.sample); });
    if (fitted.length === 0)
      fitted = points;
    var xExtent = extentOf(fitted.map(function (point) { return point.x; })
                               .concat(marks.map(function (mark) { return mark.x; })));
    var yExtent = extentOf(fitted.map(function (point) { return point.y; })
                               .concat(marks.map(function (mark) { return mark.y; })));
    var xRange = paddedRange(xExtent, 1);
    var yRange = paddedRange(yExtent, 1);
    var size = topViewSize(xRange, yRange);
    var frame = new Frame(size, xRange, yRange);
    sameScale(frame);
    var clip = 'view-' + ply.number;
    var parts = [gridOf(frame, 'roller centre X (mm)', 'roller centre Y (mm)'), frame.clip(clip)];
    var series = '<g clip-path="url(#' + clip + ')">' + seriesOf(frame, ply, thinnedAbove(frame, ply, points)) + '</g>';
    parts.push(xExtent && yExtent ? series : emptyNote(frame, 'no positions'));
    var items = marks.filter(function (mark) { return isNumber(mark.x) && isNumber(mark.y); }).map(function (mark) {
      return {x: frame.xAt(mark.x), y: frame.yAt(mark.y), mark: mark};
    });
    parts.push(circlesOf(items, 4));
    return {
      name: 'top',
      wide: true,
      caption: '<b>Seen from above</b> the roller centre\'s path, X and Y (mm) at one scale' +
          '<span class="note">' + escapeText(describeView(view)) +
          ', fitted to the courses; the links run on out of view</span>',
      svg: svgOf(size, parts.join(''))
    };
  }

  // The courses of the ply, from the data's columns: where each begins and
  // ends along the path.
  function courseSpans(ply) {
    var spans = [];
    for (var i = 0; i < ply.s.length; i++) {
      var course = ply.c[i];
      var span = spans[spans.length - 1];
      if (!span || span.course !== course) {
        span = {course: course, low: i > 0 ? ply.s[i - 1] : ply.s[i], high: ply.s[i]};
        spans.push(span);
      }
      span.high = ply.s[i];
    }
    return spans.filter(function (span) { return span.course > 0; });
  }

  function courseFacts(ply) {
    var facts = {};
    ply.courses.forEach(function (course) { facts[course.course] = course; });
    return facts;
  }

  // The whole ply in one strip, whatever the plots show: its courses side by
  // side (red where they have findings), every finding, and the stretch
  // the plots show. A click chooses the course under it.
  function overview(ply, view) {
    var frame = new Frame(OVERVIEW, {low: 0, high: Math.max(ply.length, 1)}, {low: 0, high: 1});
    var facts = courseFacts(ply);
    var parts = [];
    courseSpans(ply).forEach(function (span, k) {
      var fact = facts[span.course];
      var failing = fact && fact.findings > 0;
      var x = frame.xAt(span.low);
      var width = Math.max(frame.xAt(span.high) - x, 0.5);
      var title = 'course ' + span.course + (fact ? ': ' + courseSummary(fact) : '');
      parts.push('<rect class="band' + (failing ? ' failing' : '') + (k % 2 ? ' odd' : '') + '" x="' + pixel(x) +
                 '" y="' + frame.top + '" width="' + pixel(width) + '" height="' + (frame.bottom - frame.top) +
                 '" data-course="' + span.course + '"><title>' + escapeText(title) + '</title></rect>');
    });
    if (view.courses && !view.empty)
      parts.push('<rect class="chosen" x="' + frame.x(view.low) + '" y="' + (frame.top - 3) + '" width="' +
                 pixel(Math.max(frame.xAt(view.high) - frame.xAt(view.low), 2)) + '" height="' +
                 (frame.bottom - frame.top + 6) + '"/>');
    parts.push(gridOf(frame, LENGTH_LABEL + ': the whole ply, a band per course; click a course to plot it', ''));
    var rug = rugOf(frame, ply.marks);
    parts.push(rug.svg);
    return {
      name: 'overview',
      wide: true,
      marks: lengthsOf(rug.groups),
      range: frame.xRange,
      frame: frame,
      caption: '<b>The whole ply</b><span class="note">' + plural(courseSpans(ply).length, 'course', 'courses') +
          ', ' + plural(ply.marks.reduce(function (sum, mark) { return sum + mark.count; }, 0), 'finding marked',
                        'findings marked') + '; the plots below show ' + escapeText(describeView(view)) + '</span>',
      svg: svgOf(OVERVIEW, parts.join(''))
    };
  }

  function courseSummary(course) {
    var parts = [];
    if (course.findings > 0)
      parts.push(plural(course.findings, 'finding', 'findings'));
    if (course.warnings > 0)
      parts.push(plural(course.warnings, 'warning', 'warnings'));
    if (parts.length === 0)
      parts.push('no findings');
    return parts.join(', ') + ', run time ' + course.time;
  }

  function plotsOf(ply, view) {
    return [overview(ply, view), topView(ply, view)].concat(ply.axes.map(function (axis, index) {
      return axisPlot(ply, axis, index, view);
    }));
  }

  var data = JSON.parse(document.getElementById('zelkin-report-data').textContent);
  var body = document.body;
  var drawnPerPly = {};

  function countDrawn() {
    var drawn = 0;
    Object.keys(drawnPerPly).forEach(function (number) { drawn += drawnPerPly[number]; });
    body.setAttribute('data-plots-drawn', String(drawn));
  }

  function figureOf(plot) {
    var figure = document.createElement('figure');
    figure.className = plot.wide ? 'plot wide' : 'plot';
    figure.setAttribute('data-plot', plot.name);
    if (plot.range)
      figure.setAttribute('data-x-range', plot.range.low.toFixed(2) + ' ' + plot.range.high.toFixed(2));
    if (plot.marks !== undefined)
      figure.setAttribute('data-marks', plot.marks);
    figure.innerHTML = '<figcaption>' + plot.caption + '</figcaption>' + plot.svg;
    return figure;
  }

  // Only the findings listed for the courses shown stay in the list.
  function filterFindings(ply, view) {
    var section = document.getElementById('ply-' + ply.number);
    if (!section)
      return;
    section.querySelectorAll('table.findings tr[data-course]').forEach(function (row) {
      row.hidden = !inView(view, Number(row.getAttribute('data-course')));
    });
  }

  function draw(ply, courses) {
    var view = viewOf(ply, courses);
    var box = document.getElementById('plots-' + ply.number);
    box.setAttribute('data-view', view.courses ? view.courses.from + '-' + view.courses.to : 'whole');
    while (box.firstChild)
      box.removeChild(box.firstChild);
    drawnPerPly[ply.number] = 0;
    plotsOf(ply, view).forEach(function (plot) {
      var figure = figureOf(plot);
      box.appendChild(figure);
      if (plot.name === 'overview')
        chooseByClick(ply, figure.querySelector('svg'), plot.frame);
      drawnPerPly[ply.number] += 1;
      countDrawn();
    });
    filterFindings(ply, view);
    var choice = choices[ply.number];
    if (choice)
      choice.show(view);
  }

  function chooseByClick(ply, svg, frame) {
    svg.addEventListener('click', function (event) {
      var box = svg.getBoundingClientRect();
      var x = (event.clientX - box.left) / box.width * OVERVIEW.width;
      var s = frame.valueAtX(x);
      var course = null;
      courseSpans(ply).forEach(function (span) {
        if (s >= span.low && s <= span.high)
          course = span.course;
      });
      if (course !== null)
        choose(ply, {from: course, to: course});
    });
  }

  // The choice stands in the address too, so that a link opens the page on it.
  function choose(ply, courses) {
    draw(ply, courses);
    var hash = '#ply-' + ply.number + (courses ? '&courses=' + courses.from + '-' + courses.to : '');
    if (window.history && window.history.replaceState)
      window.history.replaceState(null, '', hash);
  }

  // The controls above a ply's plots: one course from a list, or a range.
  var choices = {};

  function makeChoice(ply) {
    var box = document.getElementById('choice-' + ply.number);
    if (!box)
      return;
    var spans = courseSpans(ply);
    if (spans.length === 0)
      return;
    var facts = courseFacts(ply);
    var lowest = spans.reduce(function (low, span) { return Math.min(low, span.course); }, Infinity);
    var highest = spans.reduce(function (high, span) { return Math.max(high, span.course); }, -Infinity);
    var options = ['<option value="">whole ply</option>'].concat(spans.map(function (span) {
      var fact = facts[span.course];
      return '<option value="' + span.course + '">course ' + span.course +
          (fact ? ': ' + escapeText(courseSummary(fact)) : '') + '</option>';
    }));
    box.innerHTML = '<label>Plot <select>' + options.join('') + '</select></label>' +
        '<label>or courses <input type="number" class="from" min="' + lowest + '" max="' + highest + '" value="' +
        lowest + '"> to <input type="number" class="to" min="' + lowest + '" max="' + highest + '" value="' +
        highest + '"></label><button type="button">whole ply</button>';
    var select = box.querySelector('select');
    var from = box.querySelector('input.from');
    var to = box.querySelector('input.to');
    function range() {
      var a = Math.round(Number(from.value));
      var b = Math.round(Number(to.value));
      if (!isNumber(a) || !isNumber(b))
        return null;
      return {from: Math.max(lowest, Math.min(a, b)), to: Math.min(highest, Math.max(a, b))};
    }
    select.addEventListener('change', function () {
      var course = Number(select.value);
      choose(ply, select.value === '' ? null : {from: course, to: course});
    });
    [from, to].forEach(function (input) {
      input.addEventListener('change', function () {
        var courses = range();
        if (courses)
          choose(ply, courses);
      });
    });
    box.querySelector('button').addEventListener('click', function () { choose(ply, null); });
    choices[ply.number] = {
      show: function (view) {
        var single = view.courses && view.courses.from === view.courses.to;
        select.value = !view.courses ? '' : single ? String(view.courses.from) : '';
        from.value = String(view.courses ? view.courses.from : lowest);
        to.value = String(view.courses ? view.courses.to : highest);
      }
    };
  }

  // "#ply-0102&courses=3-5": the ply and the courses a link asks for.
  function askedFor() {
    var match = /^#ply-([^&]+)&courses=(\d+)(?:-(\d+))?$/.exec(decodeURIComponent(window.location.hash));
    if (!match)
      return null;
    var from = Number(match[2]);
    var to = match[3] === undefined ? from : Number(match[3]);
    return {number: match[1], courses: {from: Math.min(from, to), to: Math.max(from, to)}};
  }

  body.setAttribute('data-plots-expected', String(data.plotsExpected));
  body.setAttribute('data-plots-drawn', '0');
  var asked = askedFor();
  data.plies.forEach(function (ply) {
    makeChoice(ply);
    draw(ply, asked && asked.number === ply.number ? asked.courses : null);
  });
  if (asked) {
    var section = document.getElementById('ply-' + asked.number);
    if (section)
      section.scrollIntoView();
  }
  window.addEventListener('hashchange', function () {
    var wanted = askedFor();
    data.plies.forEach(function (ply) {
      if (wanted && wanted.number === ply.number)
        draw(ply, wanted.courses);
    });
  });
})();
