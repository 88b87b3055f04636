'use strict';
// The page of a report: everything in it comes from the data that stands in the page.

const data = JSON.parse(document.getElementById('data').textContent);
const runs = data.runs;
const colours = ['#0072b2', '#e69f00'];             // of runs; told apart by the colour-blind
const capColours = ['#d55e00', '#009e73', '#cc79a7'];
const capDashes = [null, [6, 3], [2, 2]];
const bandColours = {measuring: '#56b4e9', suspended: '#999999', 'screen off': '#000000', janks: '#d55e00'};
const bandStrength = 0.18;
const modeLane = 13;                                // pixels above the chart's lines
const modeColours = [['#dddddd', '#bbbbbb'], ['#3a3d44', '#50545d']];
const lateColour = '#d55e00';                       // of frames beyond twice the median
const rowsAtOnce = 400;
const periodMs = 1000 / 60;
const dark = matchMedia('(prefers-color-scheme: dark)').matches && !matchMedia('print').matches;

// ---- small things

function element(name, text, className) {
  const made = document.createElement(name);
  if (text !== undefined) made.textContent = text;
  if (className) made.className = className;
  return made;
}

const place = id => document.getElementById(id);
const seconds = value => '+' + value.toFixed(3) + ' s';
const fixed = (value, digits) => Number(value).toFixed(digits);

function table(caption, heads, rows, into) {
  const made = element('table');
  made.append(element('caption', caption));
  const head = made.createTHead().insertRow();
  for (const [text, number] of heads) {
    const cell = element('th', text, number ? 'number' : '');
    cell.scope = 'col';
    head.append(cell);
  }
  const body = made.createTBody();
  appendRows(body, heads, rows, 0);
  into.append(made);
  return body;
}

// Rows in parts, so that a long table opens at once.
function appendRows(body, heads, rows, from) {
  for (const row of rows.slice(from, from + rowsAtOnce)) {
    const line = body.insertRow();
    row.forEach((value, i) => {
      const cell = line.insertCell();
      if (heads[i][1]) cell.className = 'number';
      if (value instanceof Node) {
        cell.append(value);
        if (value.classList.contains('bar')) cell.className = 'bars';
      } else {
        cell.textContent = value;
      }
    });
  }
  const left = rows.length - from - rowsAtOnce;
  if (left <= 0) return;
  const cell = body.insertRow().insertCell();
  cell.colSpan = heads.length;
  const more = element('button', 'Show more (' + left + ' left)');
  more.onclick = () => {
    cell.parentNode.remove();
    appendRows(body, heads, rows, from + rowsAtOnce);
  };
  cell.append(more);
}

// ---- first screen

function showFigures() {
  place('title').textContent = runs.map(run => run.title).join(' and ');
  document.title = 'dvxd report: ' + runs.map(run => run.title).join(' and ');
  place('about').textContent = runs.map(run => [run.device, fixed(run.length_s, 1) + ' s',
    run.us.length + ' intervals', 'dvxd ' + (run.daemon || 'of an unknown version'), run.rests_on]
    .filter(text => text).join(', ')).join(' / ');
  for (const run of runs) {
    const cards = element('div', undefined, 'cards');
    const figures = run.figures;
    for (const [key, name, value] of [
      ['fps_mean', 'frames per second', fixed(figures.fps_mean, 2)],
      ['fps_1_low', '1 % low', fixed(figures.fps_1_low, 2)],
      ['above_2x', 'frames above 2 x the median', String(figures.above_2x)],
      ['lowered', 'of the time below full caps', fixed(figures.lowered * 100, 1) + ' %'],
      ['cap_changes_per_minute', 'cap changes a minute', fixed(figures.cap_changes_per_minute, 1)],
    ]) {
      const card = element('div', name, 'card');
      const figure = element('b', value);
      figure.dataset.figure = key;
      card.prepend(figure);
      cards.append(card);
    }
    if (runs.length > 1) place('figures').append(element('p', run.title, 'quiet'));
    place('figures').append(cards);
  }
  place('verdict').textContent = runs.map(run =>
    (runs.length > 1 ? run.title + ': ' : '') + run.verdict + '.').join(' ');
}

// ---- charts

for (const run of runs) {
  let ms = 0;
  run.time = run.dt_ms.map(step => (ms += step) / 1000);
}

const charts = [];
let whole = [0, 1];

// The last of so many that is not after a moment, by halving; -1 where all are.
function lastAt(time, count, timeOf) {
  let low = 0;
  let high = count;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (timeOf(middle) <= time) low = middle + 1;
    else high = middle;
  }
  return low - 1;
}

// The intervals of which too many left the profile, and which app mode held when: as bands.
function findBands(run) {
  run.bands.push(...run.decisions.filter(made => made.reason === 'caps_raised_janks').map(made => {
    const last = lastAt(made.t_s, run.time.length, i => run.time[i]);
    const first = Math.max(last - made.numbers.window, 0);
    return ['janks', last < 0 ? made.t_s : run.time[first], made.t_s];
  }));
  const modes = run.decisions.filter(made => made.reason === 'app_mode');
  run.modes = modes.map((made, i) =>
    [made.moved[0].to, made.t_s, i + 1 < modes.length ? modes[i + 1].t_s : run.length_s]);
}

function drawModes(run, context, area, graph) {
  context.font = modeLane - 3 + 'px sans-serif';
  run.modes.forEach(([name, from, to], i) => {
    const left = Math.max(graph.toDomXCoord(from), area.x);
    const right = Math.min(graph.toDomXCoord(to), area.x + area.w);
    if (right <= left) return;
    context.fillStyle = modeColours[dark ? 1 : 0][i % 2];
    context.fillRect(left, area.y, right - left, modeLane);
    context.fillStyle = dark ? '#e8e8e8' : '#222222';
    if (context.measureText(name).width + 6 < right - left)
      context.fillText(name, left + 3, area.y + modeLane - 3);
  });
}

function drawBands(run, context, area, graph) {
  context.globalAlpha = bandStrength;
  for (const [kind, from, to] of run.bands) {
    const left = Math.max(graph.toDomXCoord(from), area.x);
    const right = Math.min(graph.toDomXCoord(to), area.x + area.w);
    if (right <= left) continue;
    context.fillStyle = dark && kind === 'screen off' ? '#ffffff' : bandColours[kind];
    context.fillRect(left, area.y, Math.max(right - left, 1), area.h);
  }
  context.globalAlpha = 1;
  for (const made of run.decisions) {
    if (made.kind !== 'caps') continue;
    const x = graph.toDomXCoord(made.t_s);
    if (x < area.x || x > area.x + area.w) continue;
    context.fillStyle = capColours[0];
    context.fillRect(x, area.y + modeLane, 1, 5);
  }
}

// All charts show the same time.
function follow(graph, initial) {
  if (initial) return;
  const range = graph.xAxisRange();
  for (const other of charts)
    if (other !== graph && (other.xAxisRange()[0] !== range[0] || other.xAxisRange()[1] !== range[1]))
      other.updateOptions({dateWindow: range});
}

function tell(run, time, interval) {
  const decision = run.decisions[lastAt(time, run.decisions.length, i => run.decisions[i].t_s)];
  place('reading').textContent = seconds(time) +
    (interval ? ': ' + fixed(interval, 2) + ' ms, ' + fixed(1000 / interval, 1) + ' fps' : '') +
    (decision ? '. ' + seconds(decision.t_s) + ' ' + decision.text +
      (decision.detail ? ' (' + decision.detail + ')' : '') : '');
}

function chart(run, name, className, rows, options) {
  place('charts').append(element('p', name, 'chart-name'));
  const box = element('div', undefined, 'chart ' + className);
  place('charts').append(box);
  const graph = new Dygraph(box, rows, Object.assign({
    dateWindow: whole, drawCallback: follow, legend: 'never', animatedZooms: false,
    gridLineColor: dark ? '#3a3d44' : '#e0e0e0', axisLineColor: dark ? '#888888' : '#666666',
    highlightCircleSize: 3, strokeWidth: 1,
    underlayCallback: (context, area, self) => {
      drawBands(run, context, area, self);
      if (className === 'intervals') drawModes(run, context, area, self);
    },
    axes: {y: {axisLabelWidth: 52}, x: {axisLabelFormatter: value => value.toFixed(1) + ' s'}},
  }, options));
  charts.push(graph);
}

function targetOf(run) {
  const fps = run.scenes.length ? run.scenes[run.scenes.length - 1].fps : 60;
  return 1000 / fps;
}

function showCharts() {
  whole = [0, Math.max(...runs.map(run => run.length_s), 0.001)];
  for (const run of runs) {
    const target = targetOf(run);
    const suffix = runs.length > 1 ? ' of ' + run.title : '';
    const late = 2 * run.figures.median_us;
    const rows = run.us.map((us, i) => [run.time[i], us / 1000, target, us > late ? us / 1000 : null]);
    const top = Math.max(percentile(run, 99.9) / 1000 * 1.3, 2.5 * target);
    if (rows.length) {
      chart(run, 'intervals' + suffix + ', ms; target ' + fixed(target, 2) + ' ms', 'intervals', rows, {
        labels: ['s', 'interval', 'target', 'late'], valueRange: [0, top],
        colors: [colours[runs.indexOf(run)], dark ? '#e8e8e8' : '#444444', lateColour],
        series: {target: {strokePattern: [5, 4]}, late: {strokeWidth: 0, drawPoints: true, pointSize: 2}},
        highlightCallback: (event, x, points, row) => tell(run, x, run.us[row] / 1000),
      });
    }
    const caps = run.caps.map(([time, mhz]) => [time, ...mhz]);
    const series = {};
    run.levels.forEach((resource, i) => {
      series[resource.name] = {strokePattern: capDashes[i % 3]};
    });
    chart(run, 'caps' + suffix + ', MHz', 'caps', caps, {
      labels: ['s', ...run.levels.map(resource => resource.name)], stepPlot: true, colors: capColours,
      strokeWidth: 2, series, valueRange: [0, null], includeZero: true,
      highlightCallback: (event, x) => tell(run, x),
    });
  }
  showLegend();
}

function showLegend() {
  const legend = place('legend');
  const add = (colour, text) => {
    const swatch = element('span', undefined, 'swatch');
    swatch.style.background = colour;
    legend.append(swatch, text);
  };
  runs[0].levels.forEach((resource, i) => add(capColours[i % 3], resource.name));
  for (const kind of Object.keys(bandColours)) add(bandColours[kind], kind);
  add(lateColour, 'dots: frames beyond twice the median; ticks: cap changes; above them the app mode');
}

function showRange(from, to) {
  const width = Math.min(to - from, whole[1] - whole[0]);
  const left = Math.min(Math.max(from, whole[0]), whole[1] - width);
  if (charts.length) charts[0].updateOptions({dateWindow: [left, left + width]});
}

function takeKey(event) {
  if (!charts.length) return;
  const [from, to] = charts[0].xAxisRange();
  const width = to - from;
  const middle = (from + to) / 2;
  const moves = {
    ArrowLeft: [from - width / 5, to - width / 5], ArrowRight: [from + width / 5, to + width / 5],
    '+': [middle - width / 4, middle + width / 4], '=': [middle - width / 4, middle + width / 4],
    '-': [middle - width, middle + width], Home: whole,
  };
  if (!moves[event.key]) return;
  event.preventDefault();
  showRange(...moves[event.key]);
}

// ---- below

function percentile(run, wanted) {
  const found = run.percentiles.find(([share]) => share === wanted);
  return found ? found[1] : periodMs * 1000;
}

function showDistribution() {
  const into = place('distribution');
  const columns = element('div', undefined, 'columns');
  into.append(columns);
  for (const run of runs) {
    const box = element('div');
    columns.append(box);
    const counts = new Map();
    for (const us of run.us) {
      const bin = Math.min(Math.floor(us / 2000), 50);
      counts.set(bin, (counts.get(bin) || 0) + 1);
    }
    const most = Math.max(...counts.values(), 1);
    const rows = [...counts.keys()].sort((a, b) => a - b).map(bin => {
      const bar = element('span', undefined, 'bar' + (runs.indexOf(run) ? ' second' : ''));
      bar.style.width = 100 * counts.get(bin) / most + '%';
      return [bin === 50 ? '100 and more' : bin * 2 + ' to ' + (bin * 2 + 2), counts.get(bin), bar];
    });
    table(run.title + ': frames by their interval, ms', [['ms'], ['frames', true], ['']], rows, box);
    table(run.title + ': percentiles', [['percent'], ['ms', true]],
      run.percentiles.map(([share, us]) => [String(share), fixed(us / 1000, 2)]), box);
  }
}

function showLevels() {
  for (const run of runs) {
    const rows = [];
    for (const resource of run.levels) {
      const sum = resource.levels.reduce((all, [, time]) => all + time, 0) || 1;
      resource.levels.forEach(([mhz, time], level) => {
        const bar = element('span', undefined, 'bar');
        bar.style.width = 100 * time / sum + '%';
        rows.push([resource.name, level, fixed(mhz, 0), fixed(time, 1), fixed(100 * time / sum, 1) + ' %', bar]);
      });
    }
    table(run.title + ': how long each cap stood where', [['resource'], ['level', true], ['MHz', true],
      ['s', true], ['share', true], ['']], rows, place('levels'));
  }
}

function showScenes() {
  for (const run of runs) {
    if (!run.scenes.length) {
      place('scenes').append(element('p', run.title + ': no measurement was completed.'));
      continue;
    }
    table(run.title + ': what measurements found', [['at', true], ['activity'], ['scene', true],
      ['fps', true], ['in the profile', true], ['buckets']],
      run.scenes.map(scene => [seconds(scene.t), scene.activity, scene.scene || '?', scene.fps,
        scene.share + ' %', scene.buckets.join('; ')]), place('scenes'));
  }
}

function jump(time) {
  showRange(time - 5, time + 5);
  place('charts').scrollIntoView({block: 'center'});
  place('charts').focus({preventScroll: true});
}

function showDecisions() {
  const all = [];
  runs.forEach(run => run.decisions.forEach(made => all.push([run, made])));
  all.sort((a, b) => a[1].t_s - b[1].t_s);
  const kinds = [...new Set(all.map(([, made]) => made.kind))].sort();
  const choice = place('kind');
  for (const kind of ['all', ...kinds]) choice.append(new Option(kind, kind));
  const show = () => {
    const chosen = all.filter(([, made]) => choice.value === 'all' || made.kind === choice.value);
    place('decisions').replaceChildren();
    place('decision-count').textContent = chosen.length + ' of ' + all.length;
    const box = element('div', undefined, 'scroll');
    place('decisions').append(box);
    const heads = [['at', true], ['kind'], ['decision'], ['']];
    if (runs.length > 1) heads.splice(1, 0, ['recording']);
    table('Decisions, with their cause', heads, chosen.map(([run, made]) => {
      const said = element('span', made.text);
      if (made.detail) said.append(element('small', made.detail));
      const button = element('button', 'show');
      button.setAttribute('aria-label', 'show in the chart at ' + seconds(made.t_s));
      button.onclick = () => jump(made.t_s);
      const row = [seconds(made.t_s), made.kind, said, button];
      if (runs.length > 1) row.splice(1, 0, run.title);
      return row;
    }), box);
  };
  choice.onchange = show;
  show();
}

function showTimeline() {
  for (const run of runs) {
    const box = element('div', undefined, 'scroll');
    place('timeline').append(box);
    const left = run.timeline_left_out;
    table(run.title + ': ' + run.timeline.length + ' entries' +
      (left ? ', ' + left + ' more are left out' : ''),
      [['at', true], ['kind'], ['what'], ['thread']],
      run.timeline.map(([time, kind, text, thread]) => [seconds(time), kind, text, thread]), box);
  }
}

function showSettings() {
  const names = Object.keys(runs[0].settings);
  table('The analyser\'s figures', [['name'], ...runs.map(run => [run.title, true])],
    names.map(name => [name, ...runs.map(run => run.settings[name])]), place('settings'));
}

function showDifferences() {
  if (!data.differences) return;
  place('differences-section').hidden = false;
  const body = table('What differs most first; a tick marks what is better', [['figure'],
    [runs[0].title, true], [runs[1].title, true], ['difference', true]],
    data.differences.map(row => [row.name + (row.unit ? ', ' + row.unit : ''), fixed(row.first, 2),
      fixed(row.second, 2), fixed(row.second - row.first, 2)]), place('differences'));
  data.differences.forEach((row, i) => {
    if (row.better) body.rows[i].cells[row.better === 'first' ? 1 : 2].classList.add('better');
  });
}

runs.forEach(findBands);
showFigures();
showCharts();
showDifferences();
showDistribution();
showLevels();
showScenes();
showDecisions();
showTimeline();
showSettings();
place('charts').addEventListener('keydown', takeKey);
