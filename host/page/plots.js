"use strict";
// Draws the page from its data: a section for each material, a card for each chart. Names come in
// as text and never as markup.
const data = JSON.parse(document.getElementById("data").textContent);
const SVG = "http://www.w3.org/2000/svg"; // a name, nothing is fetched from there
const WIDTH = 400, HEIGHT = 262, TOP = 14, RIGHT = 14, BOTTOM = 42;
const RAMP = [[59, 111, 212], [23, 158, 158], [224, 161, 6], [214, 69, 61]]; // cold to hot
const MOST_EAGER = 60; // charts drawn at once; of more, those that come into view

function element(name, parent, attributes = {}, text = "") {
  const made = parent instanceof SVGElement || name === "svg"
    ? document.createElementNS(SVG, name) : document.createElement(name);
  for (const key in attributes) made.setAttribute(key, attributes[key]);
  if (text) made.textContent = text;
  parent.append(made);
  return made;
}

function power(exponent) {
  return "10" + [...String(exponent)].map(c => c === "-" ? "⁻" : "⁰¹²³⁴⁵⁶⁷⁸⁹"[c]).join("");
}

function number(value) {
  const size = Math.abs(value);
  if (size !== 0 && (size >= 1e7 || size < 1e-3)) {
    const [mantissa, exponent] = value.toExponential(4).split("e");
    return Number(mantissa) + "×" + power(Number(exponent));
  }
  const [whole, part] = String(Number(value.toPrecision(6))).replace("-", "−").split(".");
  const grouped = whole.length > 4 ? whole.replace(/\B(?=(\d{3})+$)/g, "\u2009") : whole;
  return part ? grouped + "." + part : grouped;
}

// ---- axes

// Round steps of 1, 2 or 5 times a power of ten. Large and small numbers share a factor that goes
// to the axis' name.
function linearAxis(low, high, mostTicks) {
  if (low === high) { const room = Math.abs(low) / 2 || 1; low -= room; high += room; }
  else if (low > 0 && low < 0.5 * high) low = 0;
  else if (high < 0 && high > 0.5 * low) high = 0;
  const raw = (high - low) / mostTicks;
  const unit = 10 ** Math.floor(Math.log10(raw));
  const step = unit * [1, 2, 5, 10].find(factor => factor * unit >= raw * (1 - 1e-9));
  low = Math.floor(low / step + 1e-9) * step;
  high = Math.ceil(high / step - 1e-9) * step;
  const size = Math.floor(Math.log10(Math.max(Math.abs(low), Math.abs(high))));
  const factor = size >= 6 || size < -2 ? size : 0;
  const decimals = Math.max(0, factor - Math.floor(Math.log10(step) + 1e-9));
  const ticks = [];
  for (let n = 0; n <= Math.round((high - low) / step); ++n) {
    const value = low + n * step;
    const shown = Number((value / 10 ** factor).toFixed(decimals));
    ticks.push({ value, text: number(shown) + (decimals && shown ? pad(shown, decimals) : "") });
  }
  return { ticks, factor, place: value => (value - low) / (high - low) };
}

function pad(value, decimals) {
  const part = String(value).split(".")[1] || "";
  return (part ? "" : ".") + "0".repeat(decimals - part.length);
}

function logAxis(low, high) {
  const first = Math.floor(Math.log10(low) + 1e-9), last = Math.ceil(Math.log10(high) - 1e-9);
  const every = Math.ceil((last - first) / 7);
  const ticks = [];
  for (let n = first; n <= last; n += every) ticks.push({ value: 10 ** n, text: power(n) });
  return { ticks, factor: 0, place: value => (Math.log10(value) - first) / (last - first) };
}

// ---- one chart

function pointsOf(series) {
  const points = [];
  for (let n = 0; n + 1 < series.points.length; n += 2)
    if (series.points[n] !== null && series.points[n + 1] !== null)
      points.push([series.points[n], series.points[n + 1]]);
  return points;
}

function colour(chart, n) {
  if (!chart.ramp) return `var(--c${n % 8})`;
  const at = n / Math.max(1, chart.series.length - 1) * (RAMP.length - 1);
  const from = Math.min(Math.floor(at), RAMP.length - 2);
  const mixed = RAMP[from].map((c, i) => Math.round(c + (RAMP[from + 1][i] - c) * (at - from)));
  return `rgb(${mixed})`;
}

function drawAxes(svg, chart, x, y, box) {
  for (const tick of y.ticks) {
    const at = box.y(tick.value);
    element("line", svg, { class: tick.value === 0 ? "axis" : "grid", x1: box.left, x2: WIDTH - RIGHT, y1: at, y2: at });
    element("text", svg, { x: box.left - 7, y: at + 4, "text-anchor": "end" }, tick.text);
  }
  for (const tick of x.ticks) {
    const at = box.x(tick.value);
    element("line", svg, { class: "grid", x1: at, x2: at, y1: TOP, y2: HEIGHT - BOTTOM });
    element("text", svg, { x: at, y: HEIGHT - BOTTOM + 17, "text-anchor": "middle" }, tick.text);
  }
  const named = (name, axis) => axis.factor ? `${name}  (×${power(axis.factor)})` : name;
  const middle = (TOP + HEIGHT - BOTTOM) / 2;
  element("text", svg, { class: "name", x: (box.left + WIDTH - RIGHT) / 2, y: HEIGHT - 6, "text-anchor": "middle" }, named(chart.x, x));
  element("text", svg, { class: "name", x: 11, y: middle, "text-anchor": "middle", transform: `rotate(-90 11 ${middle})` }, named(chart.y, y));
}

function drawChart(card, chart) {
  const lines = chart.series.map(pointsOf);
  const all = lines.flat();
  if (!all.length) { element("p", card, {}, "There are no points to draw."); return; }
  const range = i => all.reduce(([low, high], p) => [Math.min(low, p[i]), Math.max(high, p[i])], [Infinity, -Infinity]);
  const [left, right] = range(0), [low, high] = range(1);
  const x = left > 0 && right / left >= 1000 ? logAxis(left, right) : linearAxis(left, right, 6);
  const y = linearAxis(low, high, 5);
  const margin = 27 + 6.6 * Math.max(...y.ticks.map(tick => tick.text.length));
  const box = {
    left: margin,
    x: value => margin + x.place(value) * (WIDTH - RIGHT - margin),
    y: value => HEIGHT - BOTTOM - y.place(value) * (HEIGHT - BOTTOM - TOP),
  };
  const svg = element("svg", card, { viewBox: `0 0 ${WIDTH} ${HEIGHT}`, role: "img", "aria-label": chart.title });
  drawAxes(svg, chart, x, y, box);
  const groups = lines.map((points, n) => {
    const group = element("g", svg, { "data-series": chart.series[n].label });
    const places = points.map(p => [box.x(p[0]).toFixed(1), box.y(p[1]).toFixed(1)]);
    element("path", group, { class: "line", stroke: colour(chart, n), d: places.map((p, i) => (i ? "L" : "M") + p.join(" ")).join("") });
    if (places.length <= 40)
      for (const p of places) element("circle", group, { cx: p[0], cy: p[1], r: 2.6, fill: colour(chart, n) });
    return group;
  });
  drawLegend(card, chart, groups);
  follow(svg, chart, lines, groups, box);
}

function drawLegend(card, chart, groups) {
  if (groups.length < 2) return;
  const legend = element("div", card, { class: "legend" });
  chart.series.forEach((series, n) => {
    const button = element("button", legend, { type: "button", "aria-pressed": "true" });
    element("i", button).style.background = colour(chart, n);
    element("span", button, {}, series.label);
    button.onclick = () => {
      const shown = groups[n].style.display === "none";
      groups[n].style.display = shown ? "" : "none";
      button.setAttribute("aria-pressed", shown);
    };
  });
}

// The point nearest to the pointer, with its numbers.
function follow(svg, chart, lines, groups, box) {
  const tip = document.getElementById("tip");
  const focus = element("circle", svg, { class: "focus", r: 5, visibility: "hidden" });
  svg.onpointermove = event => {
    const frame = svg.getBoundingClientRect();
    const px = (event.clientX - frame.left) * WIDTH / frame.width;
    const py = (event.clientY - frame.top) * HEIGHT / frame.height;
    let best = null;
    lines.forEach((points, n) => {
      if (groups[n].style.display === "none") return;
      for (const p of points) {
        const away = Math.hypot(box.x(p[0]) - px, box.y(p[1]) - py);
        if (!best || away < best.away) best = { away, p, n };
      }
    });
    if (!best) return;
    for (const [key, value] of Object.entries({ cx: box.x(best.p[0]), cy: box.y(best.p[1]), fill: colour(chart, best.n), visibility: "visible" }))
      focus.setAttribute(key, value);
    const label = chart.series[best.n].label;
    tip.textContent = `${label ? label + "\n" : ""}${chart.x}: ${number(best.p[0])}\n${chart.y}: ${number(best.p[1])}`;
    tip.hidden = false;
    tip.style.left = Math.min(event.clientX + 14, innerWidth - tip.offsetWidth - 8) + "px";
    tip.style.top = Math.max(8, event.clientY - tip.offsetHeight - 12) + "px";
  };
  svg.onpointerleave = () => { tip.hidden = true; focus.setAttribute("visibility", "hidden"); };
}

// ---- the page

function drawNumbers(card, numbers) {
  const block = element("div", card);
  element("code", block, {}, numbers.keyword);
  if (!numbers.rows.length) return;
  if (numbers.rows.length === 1) { // in a line of text
    const line = element("p", block);
    numbers.rows[0].forEach((value, n) => {
      const pair = element("span", line);
      element("i", pair, {}, numbers.names[n]);
      pair.append(" = " + (value === null ? "–" : number(value)));
    });
    return;
  }
  const table = element("table", block);
  const head = element("tr", table);
  for (const name of numbers.names) element("th", head, { scope: "col" }, name);
  for (const row of numbers.rows) {
    const line = element("tr", table);
    for (const value of row) element("td", line, {}, value === null ? "–" : number(value));
  }
  if (numbers.more) element("p", block, {}, `and ${number(numbers.more)} more rows`);
}

function drawCard(cards, chart, id) {
  const card = element("article", cards, { class: "card", id });
  element("h3", card, {}, chart.title);
  element("code", card, {}, chart.keyword);
  const draw = () => {
    drawChart(card, chart);
    if (chart.note) element("p", card, {}, chart.note[0].toUpperCase() + chart.note.slice(1) + ".");
  };
  if (!waiting) return draw();
  card.style.minHeight = "24rem";
  card.draw = draw;
  waiting.observe(card);
}

function watch(entries) {
  for (const entry of entries) {
    if (!entry.isIntersecting) continue;
    waiting.unobserve(entry.target);
    entry.target.style.minHeight = "";
    entry.target.draw();
  }
}
const charts = data.sections.reduce((sum, section) => sum + section.charts.length, 0);
const waiting = charts > MOST_EAGER ? new IntersectionObserver(watch, { rootMargin: "600px" }) : null;

const main = document.querySelector("main"), contents = document.getElementById("contents");
const groups = {};
function entry(kind, name, target) {
  groups[kind] ??= element("h2", contents, {}, kind) && element("div", contents);
  element(target ? "a" : "span", groups[kind], target ? { href: "#" + target, title: name } : { title: name + ": not drawn" }, name);
}

document.getElementById("facts").textContent = data.facts;
data.sections.forEach((section, s) => {
  const place = element("section", main, { id: "s" + s });
  const heading = element("h2", place, {}, section.name);
  if (section.label) element("small", heading, {}, section.label);
  const cards = element("div", place, { class: "cards" });
  if (section.numbers.length) {
    const card = element("article", cards, { class: "card numbers", "aria-label": "Constants" });
    for (const numbers of section.numbers) drawNumbers(card, numbers);
  }
  section.charts.forEach((chart, c) => {
    const id = `s${s}c${c}`;
    drawCard(cards, chart, id);
    if (section.each) entry(section.group, chart.title, id);
  });
  if (!section.each) entry(section.group, section.name, "s" + s);
});
for (const rest of data.notDrawn) for (const name of rest.names) entry(rest.group, name);

document.getElementById("filter").oninput = event => {
  const wanted = event.target.value.toLowerCase();
  for (const link of contents.querySelectorAll("a, span"))
    link.hidden = !link.textContent.toLowerCase().includes(wanted);
};
