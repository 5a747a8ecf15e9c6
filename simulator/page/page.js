// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

const $ = id => document.getElementById(id);
const windowMs = 5 * 60 * 1000,
    pollMs = 2000,
    patienceMs = 4000,
    gapMs = 5000,
    kept = 200;
let yard = null; // the last state
let clockOffset = 0; // the simulator's clock less ours, ms
let faults = []; // that there are, as the simulator describes them
let samples = []; // {t, wallboxes: {id: [power, offered power]}}, W
const requests = new Map(); // by number: {record, item}
const cards = new Map(); // by wallbox id

/* Text and numbers. Ids and replies may hold any text: it is only ever set as text. */
const setText = (node, text) => {
    if (node.textContent !== String(text)) node.textContent = text;
};
const show = (node, isShown) => {
    node.hidden = !isShown;
};
const kilo = (value, digits = 2) => (value / 1000).toFixed(digits);
const ampere = value => `${Math.round(value * 10) / 10} A`;
const now = () => Date.now() + clockOffset;
const clock = time => new Date(time).toLocaleTimeString([], {hour12: false});
const sum = values => values.reduce((total, value) => total + value, 0);
function age(time) {
    const seconds = Math.max(0, Math.round((now() - time) / 1000));
    return seconds < 100
        ? `${seconds} s ago`
        : seconds < 6000
          ? `${Math.round(seconds / 60)} min ago`
          : `${Math.round(seconds / 3600)} h ago`;
}
// A reply too long to be kept is described by its length.
const succeeded = record =>
    record.status === 200 && (record.reply?.success === true || /^\d+ bytes$/.test(record.reply));
const answeredAt = record => Date.parse(record.time) + record.durationMs;
const setGlyph = (node, name) => node.querySelector("use").setAttribute("href", `#${name}`);

/* The cards */
function makeCard(id) {
    const card = $("card").content.firstElementChild.cloneNode(true);
    card.dataset.id = id;
    card.setAttribute("aria-label", id);
    setText(card.querySelector(".id"), id);
    for (const button of card.querySelectorAll("button[data-path]")) button.dataset.says = button.textContent;
    return card;
}

function fillCard(card, wallbox) {
    const find = selector => card.querySelector(selector);
    const {car, limit} = wallbox;
    card.dataset.status = wallbox.status;
    setGlyph(find(".status"), wallbox.status);
    setText(find(".status span"), wallbox.status);
    setText(find(".power-now span"), kilo(wallbox.power));
    card.querySelectorAll(".phases > div").forEach((row, phase) => {
        const scale = Math.max(wallbox.maxChargingCurrent, wallbox.currents[phase]);
        row.querySelector(".fill").style.setProperty("--fill", wallbox.currents[phase] / scale);
        row.querySelector(".tick").style.setProperty("--tick", Math.min(1, (limit?.value ?? 0) / scale));
        show(row.querySelector(".tick"), limit && phase < (car?.phases ?? 3));
        setText(row.lastElementChild, `${wallbox.currents[phase].toFixed(1)} A`);
    });
    setText(
        find(".car"),
        car ? `${car.phases} phase${car.phases > 1 ? "s" : ""}, up to ${ampere(car.maxCurrent)}` : "none",
    );
    setText(
        find(".limit"),
        limit ? `${ampere(limit.value)}, ${age(Date.parse(limit.time))}` : "none received",
    );
    setText(find(".energy"), `${kilo(wallbox.sessionEnergy, 3)} kWh`);
    setText(find(".maximum"), wallbox.maxChargingCurrent);
    find("[data-path=configure] input").placeholder = wallbox.maxChargingCurrent;
    const canPause = car && !["Finishing", "Faulted"].includes(wallbox.status);
    const offers = {
        plug: !car,
        unplug: car,
        pause: canPause && !car.paused,
        resume: canPause && car.paused,
        finish: canPause,
        break: !wallbox.broken,
        mend: wallbox.broken,
    };
    for (const [path, isOffered] of Object.entries(offers)) show(find(`[data-path=${path}]`), isOffered);
    const isPlotted = $("plotted").value === wallbox.id;
    card.classList.toggle("plotted", isPlotted);
    find(".id").setAttribute("aria-pressed", isPlotted);
}

function fillCards(wallboxes) {
    const focused = document.activeElement,
        home = focused.closest(".card");
    const ids = new Set(wallboxes.map(wallbox => wallbox.id));
    for (const [id, card] of cards) {
        if (!ids.has(id) && cards.delete(id)) card.remove();
    }
    wallboxes.forEach((wallbox, index) => {
        if (!cards.has(wallbox.id)) cards.set(wallbox.id, makeCard(wallbox.id));
        const card = cards.get(wallbox.id);
        if ($("cards").children[index] !== card)
            $("cards").insertBefore(card, $("cards").children[index] ?? null);
        fillCard(card, wallbox);
    });
    // The button that had the focus may be gone: whoever works by keyboard goes on from its neighbour.
    if (home && !focused.checkVisibility())
        (home.isConnected ? home.querySelector(".hands button:not([hidden], [hidden] *)") : $("add")).focus();
}

/* The group */
function fillGroup() {
    const boxes = yard.wallboxes;
    setText($("group"), yard.group);
    setText($("wallbox-count"), boxes.length);
    setText($("charging-count"), `${boxes.filter(box => box.status === "Charging").length} charging`);
    setText($("total-power"), kilo(sum(boxes.map(box => box.power))));
    setText($("total-limit"), `limit ${kilo(sum(boxes.map(box => box.offeredPower)))} kW`);
    setText($("speed"), yard.speed);
    document.querySelector("input[name=group]").placeholder = yard.group;
    const on = faults.filter(fault => yard.fault[fault.name]);
    const text = on.map(fault => fault.says.replace("%1", yard.fault[fault.name])).join(", ");
    setText($("misbehaving"), text && `The backend is told to misbehave: ${text}.`);
    show($("misbehaving"), text);
    fillChooser(boxes.map(box => box.id));
}

// The fields of the fault form. A number has bounds, the others are on or off.
function makeFaultFields() {
    for (const {name, label, least, most} of faults) {
        const field = document.createElement("label"),
            input = document.createElement("input");
        input.name = name;
        if (most)
            Object.assign(input, {
                type: "number",
                min: least,
                max: most,
                placeholder: least ? "as it is" : "none",
            });
        else Object.assign(input, {type: "checkbox"});
        field.className = most ? "" : "check";
        field.append(...(most ? [`${label} `, input] : [input, ` ${label}`]));
        $(most ? "fault-numbers" : "fault-flags").append(field);
    }
}

function fillChooser(ids) {
    const options = $("plotted").options;
    if (options.length === ids.length + 1 && ids.every((id, index) => options[index + 1].value === id))
        return;
    const chosen = $("plotted").value || ids.find(id => location.hash === `#${encodeURIComponent(id)}`);
    $("plotted").replaceChildren(options[0], ...ids.map(id => new Option(id, id)));
    $("plotted").value = ids.includes(chosen) ? chosen : "";
}

function fillRates() {
    const records = [...requests.values()].map(entry => entry.record);
    const polls = records.filter(
        record => record.operation === "get_values" && now() - Date.parse(record.time) < 10000,
    );
    const last = records[records.length - 1];
    setText($("polls"), (polls.length / 10).toFixed(1));
    setText($("last-operation"), last ? last.operation || last.path : "none");
    setText($("last-age"), last ? age(Date.parse(last.time)) : "");
}

/* The plot: SVG by hand, redrawn as time goes by */
function draw() {
    const id = $("plotted").value;
    const points = samples.map(({t, wallboxes}) => {
        const values = id ? [wallboxes[id] ?? [0, 0]] : Object.values(wallboxes);
        return {t, power: sum(values.map(value => value[0])), limit: sum(values.map(value => value[1]))};
    });
    const frame = makeFrame(points);
    const marks = limitMarks(id)
        .filter(mark => mark.t > frame.start)
        .reverse();
    $("plot").replaceChildren(...drawAxes(frame), ...drawMarks(frame, marks), ...drawLines(frame, points));

    const last = points[points.length - 1];
    setText($("power-now"), `${kilo(last.power)} kW`);
    setText($("limit-now"), `${kilo(last.limit)} kW`);
    setText($("limit-age"), marks.length ? age(marks[0].t) : "none in this time");
}

// Where a time and a power are, in pixels.
function makeFrame(points) {
    const {clientWidth: width, clientHeight: height} = $("plot");
    const left = 40,
        right = width - 10,
        top = 24,
        floor = height - 36;
    const end = now(),
        start = end - windowMs;
    const most = Math.max(4000, ...points.map(point => Math.max(point.power, point.limit)));
    const magnitude = 10 ** Math.floor(Math.log10(most / 4));
    const step = magnitude * [1, 2, 2.5, 5, 10].find(factor => factor * magnitude >= most / 4);
    const steps = Math.ceil(most / step);
    return {
        left,
        right,
        top,
        floor,
        height,
        start,
        end,
        step,
        steps,
        x: t => (left + ((t - start) / windowMs) * (right - left)).toFixed(1),
        y: watt => (floor - (watt / (steps * step)) * (floor - top)).toFixed(1),
    };
}

function drawAxes({left, right, height, end, step, steps, x, y}) {
    const parts = [svg("text", {class: "watt", x: left - 8, y: 10}, "kW")];
    for (let watt = 0; watt <= steps * step; watt += step) {
        parts.push(svg("path", {class: "grid", d: `M${left} ${y(watt)}H${right}`}));
        parts.push(svg("text", {class: "watt", x: left - 8, y: Number(y(watt)) + 4}, watt / 1000));
    }
    parts.push(svg("text", {class: "watt", x: right, y: height - 4}, "now"));
    for (let minute = 1; minute <= windowMs / 60000; ++minute)
        parts.push(
            svg("text", {class: "minute", x: x(end - minute * 60000), y: height - 4}, `−${minute} min`),
        );
    return parts;
}

function drawMarks({top, floor, x}, marks) {
    let labelled = Infinity; // labels keep their distance, the latest come first
    return marks.flatMap(mark => {
        const at = x(mark.t),
            isLabelled = mark.label && labelled - at > 36;
        labelled = isLabelled ? at : labelled;
        return [
            svg("path", {class: "rule", d: `M${at} ${top}V${floor}`}),
            svg("path", {class: "mark", d: `M${at} ${floor + 3}l4 8h-8z`}),
            svg("text", {class: "label", x: at, y: 10}, isLabelled ? mark.label : ""),
        ];
    });
}

function drawLines({floor, end, x, y}, points) {
    const lines = unbroken(points, end);
    const path = (line, name) =>
        line
            .map((point, index) =>
                index ? `H${x(point.t)}V${y(point[name])}` : `M${x(point.t)} ${y(point[name])}`,
            )
            .join("");
    return [
        ...lines.map(line =>
            svg("path", {class: "area", d: `${path(line, "power")}V${floor}H${x(line[0].t)}z`}),
        ),
        ...["power", "limit"].map(name =>
            svg("path", {class: name, d: lines.map(line => path(line, name)).join("")}),
        ),
    ];
}

// A line for each time in which somebody looked on; in between is a gap.
function unbroken(points, end) {
    const lines = [];
    points.forEach((point, index) => {
        if (index === 0 || point.t - points[index - 1].t > gapMs) lines.push([]);
        lines[lines.length - 1].push(point);
    });
    const last = points[points.length - 1];
    if (end - last.t < gapMs) lines[lines.length - 1].push({...last, t: end});
    return lines;
}

function svg(name, attributes, text = "") {
    const node = document.createElementNS("http://www.w3.org/2000/svg", name);
    for (const [key, value] of Object.entries(attributes)) node.setAttribute(key, value);
    node.textContent = text;
    return node;
}

// When limits arrived, of the group or of one wallbox; with the current where it is another than before.
function limitMarks(id) {
    const marks = [];
    let before = null;
    for (const {record} of requests.values()) {
        if (record.operation !== "set_limits" || !succeeded(record)) continue;
        const limit = record.request.limits?.[id];
        if (id && !limit) continue;
        marks.push({t: answeredAt(record), label: id && limit.value !== before ? ampere(limit.value) : ""});
        before = limit?.value;
    }
    return marks;
}

/* The log */
// What a request asked for. It may have been refused, and hold anything.
function asked(record) {
    const {evse_ids: ids, limits} = record.request;
    if (Array.isArray(ids)) return ids.length === 1 ? "1 wallbox" : `${ids.length} wallboxes`;
    const values = Object.values(limits ?? {})
        .map(limit => limit?.value)
        .filter(Number.isFinite);
    if (!values.length) return record.operation ? "" : record.path;
    const least = Math.min(...values),
        most = Math.max(...values);
    const who = values.length === 1 ? Object.keys(limits)[0] : `${values.length} wallboxes`;
    return `${who} ${least < most ? `${least} to ` : ""}${most} A`;
}

function makeItem() {
    const item = $("item").content.firstElementChild.cloneNode(true);
    item.firstElementChild.addEventListener("toggle", () => fillBody(item));
    return item;
}

function fillItem(item, record) {
    const {status, durationMs} = record,
        isAnswered = status !== null;
    const write = (name, text) => setText(item.querySelector(name), text);
    write(".time", clock(record.time));
    write(".operation", record.operation || "unknown");
    write(".asked", asked(record));
    write(".code", isAnswered ? `${succeeded(record) ? "✓" : "✕"} ${status}` : "waits");
    write(
        ".took",
        isAnswered ? `${durationMs < 10 ? durationMs.toFixed(2) : Math.round(durationMs)} ms` : "",
    );
    item.querySelector(".asked").title = asked(record);
    item.classList.toggle("failed", isAnswered && !succeeded(record));
    item.classList.toggle("poll", succeeded(record) && record.operation === "get_values");
    item.record = record;
    fillBody(item);
}

// Two hundred bodies are a lot of text: only those are written that are read.
function fillBody(item) {
    if (!item.firstElementChild.open) return;
    const {number, path, request, reply} = item.record;
    const write = (name, value) =>
        setText(item.querySelector(name), typeof value === "string" ? value : JSON.stringify(value, null, 2));
    write("h4", `Request ${number} to ${path}`);
    write(".request", request);
    write(".reply", reply ?? "none yet");
}

function merge(records) {
    for (const record of records) {
        const known = requests.get(record.number);
        const item = known?.item ?? makeItem();
        requests.set(record.number, {record, item});
        if (!known) $("log").prepend(item);
        if (known?.record.time !== record.time || known.record.status !== record.status)
            fillItem(item, record);
    }
    for (const number of [...requests.keys()].slice(0, -kept)) {
        requests.get(number).item.remove();
        requests.delete(number);
    }
}

/* News from the simulator: a stream of events, or asking again while there is none */
let stream = null,
    lastHeard = 0,
    pollTimer = 0,
    isPolling = false,
    lostSince = null;

async function ask(path, options = {}) {
    const response = await fetch(`/control/${path}`, {signal: AbortSignal.timeout(patienceMs), ...options});
    const reply = await response.json();
    if (!response.ok) throw new Error(reply.error);
    return reply;
}

function apply(state) {
    yard = state;
    if (!faults.length) learnFaults().catch(() => {});
    const t = Date.parse(state.time);
    clockOffset = t - Date.now();
    if (t > (samples[samples.length - 1]?.t ?? 0))
        samples.push({
            t,
            wallboxes: Object.fromEntries(
                state.wallboxes.map(box => [box.id, [box.power, box.offeredPower]]),
            ),
        });
    while (samples[0]?.t < t - windowMs) samples.shift();
    render();
}

function render() {
    fillGroup();
    fillCards(yard.wallboxes);
    tick();
}

// A simulator that has been started again counts from one.
function forgetOlderRun(state) {
    if (state.requestCount >= Math.max(0, ...requests.keys())) return;
    requests.clear();
    $("log").replaceChildren();
}

// What happened while this page did not look on.
function recall(history) {
    const others = history.map(({time, wallboxes}) => ({t: Date.parse(time), wallboxes}));
    const missed = others.filter(other => !samples.some(sample => Math.abs(sample.t - other.t) < 1000));
    samples = [...samples, ...missed].sort((one, other) => one.t - other.t);
}

// Asked for with each state until they have come.
async function learnFaults() {
    const reply = await ask("faults");
    if (faults.length) return;
    faults = reply.faults;
    makeFaultFields();
    render();
}

function open() {
    const opened = new EventSource("/control/events");
    stream = opened;
    let isNew = true;
    lastHeard = Date.now();
    opened.addEventListener("state", event => {
        const state = JSON.parse(event.data);
        lastHeard = Date.now();
        if (isNew) {
            isNew = isPolling = false;
            clearTimeout(pollTimer);
            setLink("live");
            forgetOlderRun(state);
        }
        apply(state);
    });
    opened.addEventListener("history", event => recall(JSON.parse(event.data).history));
    opened.addEventListener("requests", event => merge(JSON.parse(event.data).requests));
    opened.onerror = () => stream === opened && lose();
}

function lose() {
    stream.close();
    stream = null;
    if (!isPolling) poll();
}

async function poll() {
    isPolling = true;
    try {
        const [state, {requests: records}] = await Promise.all([ask("state"), ask("requests")]);
        if (!isPolling) return; // the stream is back
        setLink("polling");
        forgetOlderRun(state);
        merge(records);
        apply(state);
    } catch {
        if (!isPolling) return;
        setLink("lost");
    }
    if (!stream) open();
    pollTimer = setTimeout(poll, pollMs);
}

function setLink(link) {
    lostSince = link === "lost" ? (lostSince ?? clock(Date.now())) : null;
    $("link").className = `link ${link}`;
    setGlyph($("link"), link);
    setText(
        $("link").querySelector("span"),
        {live: "Live", polling: "Asking every 2 s", lost: "No answer"}[link],
    );
    setText(
        $("outage"),
        {
            live: "",
            polling: "The live stream is broken: the page asks every 2 s instead.",
            lost: `No answer from the simulator since ${lostSince}; what you see is from before. Asking again every 2 s.`,
        }[link],
    );
    show($("outage"), link !== "live");
    document.title = `${link === "lost" ? "No answer: " : ""}Charging yard`;
}

function tick() {
    if (stream && Date.now() - lastHeard > patienceMs) lose();
    if (!yard) return;
    fillRates();
    draw();
}

/* User actions: every form and button with a path posts to the control endpoint */
let toastTimer = 0;
function say(text) {
    setText($("toast"), text);
    clearTimeout(toastTimer);
    toastTimer = setTimeout(() => setText($("toast"), ""), 6000);
}

async function act(element, body) {
    const id = element.closest(".card")?.dataset.id;
    const path =
        id === undefined
            ? element.dataset.path
            : `wallboxes/${encodeURIComponent(id)}/${element.dataset.path}`;
    const what = (id === undefined ? "" : `${id}: `) + element.dataset.says.toLowerCase();
    try {
        apply(await ask(path, {method: "POST", body: JSON.stringify(body)}));
        say(`${what}, done`);
        return true;
    } catch (error) {
        say(`${what} failed: ${error.message}`);
    }
}

function bodyOf(form) {
    const body = {};
    for (const {name, type, value, checked} of form.querySelectorAll("[name]")) {
        if (type === "checkbox" ? checked : value !== "")
            body[name] =
                type === "checkbox" ? true : type === "number" || name === "phases" ? Number(value) : value;
    }
    return body;
}

document.addEventListener("submit", async event => {
    event.preventDefault();
    if ((await act(event.target, bodyOf(event.target))) && "clear" in event.target.dataset)
        event.target.reset();
});
document.addEventListener("click", event => {
    const button = event.target.closest("button");
    if (button?.dataset.path) act(button, {});
    else if (button?.classList.contains("id"))
        plot($("plotted").value === button.textContent ? "" : button.textContent);
});
function plot(id) {
    $("plotted").value = id;
    history.replaceState(null, "", `#${encodeURIComponent(id)}`); // for the next time, and for a link
    render();
}
$("plotted").addEventListener("change", event => plot(event.target.value));
$("behave").addEventListener("click", event => act(event.target.form, {}));
$("quiet").addEventListener("change", event => $("log").classList.toggle("quiet", event.target.checked));
$("address").textContent = location.host;
new ResizeObserver(() => yard && draw()).observe($("plot"));
setInterval(tick, 500);
open();
