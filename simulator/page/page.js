// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

const $ = id => document.getElementById(id);
const windowMs = 5 * 60 * 1000,
    pollMs = 2000,
    patienceMs = 4000,
    gapMs = 5000,
    keptRequests = 200,
    mostCards = 8; // if there are more wallboxes, only the chosen one is shown in full
let yard = null; // the last state
let clockOffset = 0; // the simulator's clock minus this one, ms
let faults = []; // all that can be set, as the simulator describes them
let samples = []; // {t, wallboxes: {id: [power, offered power]}}, W
let plotSize = {width: 0, height: 0};
let limits = []; // received in the last five minutes
const requests = new Map(); // by number: {record, item}
const cards = new Map(); // by wallbox id

/* Text and numbers. Ids and replies may hold any text: it is never parsed as HTML. */
const setText = (node, text) => {
    if (node.textContent !== String(text)) node.textContent = text;
};
const show = (node, isShown) => {
    node.hidden = !isShown;
};
const kilo = (value, digits = 2) => (value / 1000).toFixed(digits);
const ampere = value => `${Math.round(value * 10) / 10} A`;
const now = () => Date.now() + clockOffset;
const clock = time => new Date(time).toLocaleTimeString([], {hourCycle: "h23"});
const isDense = () => yard.wallboxes.length > mostCards;
const sum = values => values.reduce((total, value) => total + value, 0);
function age(time) {
    const seconds = Math.max(0, Math.round((now() - time) / 1000));
    return seconds < 100
        ? `${seconds} s ago`
        : seconds < 6000
          ? `${Math.round(seconds / 60)} min ago`
          : `${Math.round(seconds / 3600)} h ago`;
}
// Writing an attribute makes the browser style the element again, even if it is the same as before.
const setAttribute = (node, name, value) => {
    if (node.getAttribute(name) !== String(value)) node.setAttribute(name, value);
};
const setGlyph = (node, name) => setAttribute(node.querySelector("use"), "href", `#${name}`);

/* The cards */
function makeCard(id) {
    const card = $("card").content.firstElementChild.cloneNode(true);
    card.dataset.id = id;
    card.setAttribute("aria-label", id);
    setText(card.querySelector(".id"), id);
    card.querySelector(".id").title = id;
    const phases = card.querySelector(".phases");
    for (const name of ["L2", "L3"]) {
        const row = phases.firstElementChild.cloneNode(true);
        setText(row.firstElementChild, name);
        phases.append(row);
    }
    return card;
}

function fillCard(card, wallbox) {
    const find = selector => card.querySelector(selector);
    const {car, limit} = wallbox;
    setAttribute(card, "data-status", wallbox.status);
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
    setText(find(".limit"), limit ? `${ampere(limit.value)}, ${age(Date.parse(limit.time))}` : "none yet");
    setText(find(".energy"), `${kilo(wallbox.sessionEnergy, 3)} kWh`);
    setAttribute(find("[data-path=configure] input"), "placeholder", wallbox.maxChargingCurrent);
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
    card.classList.toggle("tile", isDense() && !isPlotted);
    setAttribute(find(".id"), "aria-pressed", isPlotted);
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
    // If the button that had the focus has disappeared, another one gets it, for those who work by keyboard.
    if (home && !focused.checkVisibility())
        (home.isConnected
            ? home.querySelector(".actions button:not([hidden], [hidden] *)")
            : $("add")
        ).focus();
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
    setText($("faulty"), faultText());
    show($("faulty"), faultText());
    fillFaults();
    fillChooser(boxes.map(box => box.id));
    document.body.classList.toggle("dense", isDense());
    show($("choose"), isDense() && !$("plotted").value);
}

function faultText() {
    const on = faults.filter(fault => yard.fault[fault.name]);
    const text = on.map(fault => fault.says.replace("%1", yard.fault[fault.name])).join(", ");
    return text && `The backend has faults: ${text}.`;
}

// The form shows the faults that are set, whoever has set them. Between two changes it keeps what is entered.
function fillFaults() {
    const text = JSON.stringify([faults, yard.fault]);
    if ($("faults").dataset.shown === text) return;
    $("faults").dataset.shown = text;
    for (const {name, most} of faults) {
        const input = $("faults").elements[name],
            value = yard.fault[name];
        if (most) input.value = value ?? "";
        else input.checked = value ?? false;
    }
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
                placeholder: least ? "not set" : "none",
            });
        else Object.assign(input, {type: "checkbox"});
        field.className = most ? "" : "check";
        field.append(...(most ? [`${label} `, input] : [input, ` ${label}`]));
        $(most ? "fault-numbers" : "fault-flags").append(field);
    }
}

const linked = ids => ids.find(id => location.hash === `#${encodeURIComponent(id)}`);

function fillChooser(ids) {
    const options = $("plotted").options;
    if (options.length === ids.length + 1 && ids.every((id, index) => options[index + 1].value === id))
        return;
    const chosen = $("plotted").value || linked(ids);
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
    setText($("last-operation"), last ? last.operation || last.path : "none yet");
    setText($("last-age"), last ? age(Date.parse(last.time)) : "");
}

/* The plot: SVG that is written anew with each change */
function draw() {
    const id = $("plotted").value;
    const points = samples.map(({t, wallboxes}) => {
        const values = id
            ? [Object.hasOwn(wallboxes, id) ? wallboxes[id] : [0, 0]]
            : Object.values(wallboxes);
        return {t, power: sum(values.map(value => value[0])), limit: sum(values.map(value => value[1]))};
    });
    const frame = makeFrame(points);
    const marks = limitMarks(id).reverse();
    $("plot").replaceChildren(...drawAxes(frame), ...drawMarks(frame, marks), ...drawLines(frame, points));

    const last = points[points.length - 1];
    setText($("power-now"), `${kilo(last.power)} kW`);
    setText($("limit-now"), `${kilo(last.limit)} kW`);
    const none = yard.wallboxes.some(box => box.limit)
        ? "none in this time"
        : "none yet: set a charging current in the client";
    setText($("limit-age"), marks.length ? age(marks[0].t) : none);
}

// The bounds of the plot, and functions that convert times and powers to pixels.
function makeFrame(points) {
    const {width, height} = plotSize;
    const left = 40,
        right = width - 10,
        top = 24,
        floor = height - 36;
    const end = now(),
        start = end - windowMs;
    const most = 1.05 * Math.max(4000, ...points.map(point => Math.max(point.power, point.limit)));
    const magnitude = 10 ** Math.floor(Math.log10(most / 4));
    const step = magnitude * [1, 2, 2.5, 5, 10].find(factor => factor * magnitude >= most / 5);
    return {
        left,
        right,
        top,
        floor,
        height,
        start,
        end,
        step,
        most,
        x: t => (left + ((t - start) / windowMs) * (right - left)).toFixed(1),
        y: watt => (floor - (watt / most) * (floor - top)).toFixed(1),
    };
}

function drawAxes({left, right, height, end, step, most, x, y}) {
    const parts = [svg("text", {class: "watt", x: left - 8, y: 10}, "kW")];
    for (let watt = 0; watt <= most; watt += step) {
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
    let labelled = Infinity; // the latest labels come first, and keep a distance
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
    show($("gap"), lines.length > 1);
    // A curve of steps. A value that stays the same needs no points in between.
    const path = (line, name) =>
        line
            .map((point, index) => {
                if (!index) return `M${x(point.t)} ${y(point[name])}`;
                const stays = point[name] === line[index - 1][name] && index < line.length - 1;
                return stays ? "" : `H${x(point.t)}V${y(point[name])}`;
            })
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

// The parts of the curve between gaps.
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

const recent = received => received.filter(limit => Date.parse(limit.time) > now() - windowMs);

// When limits arrived, for the group or for one wallbox. For a wallbox each change is labelled with the current.
function limitMarks(id) {
    limits = recent(limits);
    const marks = [];
    let before = null;
    for (const {time, id: target, value} of limits) {
        const t = Date.parse(time);
        const isSame = !id && t - marks[marks.length - 1]?.t < 300; // on the same pixel
        if ((id && target !== id) || isSame) continue;
        marks.push({t, label: id && value !== before ? ampere(value) : ""});
        before = value;
    }
    return marks;
}

/* The log */
function makeItem() {
    const item = $("item").content.firstElementChild.cloneNode(true);
    item.firstElementChild.addEventListener("toggle", () => fillBodies(item));
    return item;
}

function fillItem(item, record) {
    const {operation, status, durationMs, succeeded} = record,
        isAnswered = status !== null;
    const asked = record.summary || (operation ? "" : record.path);
    const write = (name, text) => setText(item.querySelector(name), text);
    write(".time", clock(record.time));
    write(".operation", operation || "unknown");
    write(".asked", asked);
    write(".code", isAnswered ? `${succeeded ? "✓" : "✕"} ${status}` : "waits");
    write(
        ".took",
        isAnswered ? `${durationMs < 10 ? durationMs.toFixed(2) : Math.round(durationMs)} ms` : "",
    );
    item.querySelector(".asked").title = asked;
    item.classList.toggle("failed", isAnswered && !succeeded);
    item.classList.toggle("poll", succeeded && operation === "get_values");
    item.record = record;
    fillBodies(item);
}

// The bodies are a lot of text: only those that are looked at are fetched.
async function fillBodies(item) {
    if (!item.firstElementChild.open) return;
    const {number, path} = item.record;
    const write = (name, value) =>
        setText(item.querySelector(name), typeof value === "string" ? value : JSON.stringify(value, null, 2));
    write("h4", `Request ${number} to ${path}`);
    try {
        const {request, reply} = await ask(`requests/${number}`);
        write(".request", request);
        write(".reply", reply ?? "none yet");
    } catch (error) {
        write(".request", error.message);
    }
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
    for (const number of [...requests.keys()].slice(0, -keptRequests)) {
        requests.get(number).item.remove();
        requests.delete(number);
    }
}

/* News from the simulator: a stream of events, or requests while there is no stream */
let stream = null,
    watchdog = 0,
    pollTimer = 0,
    isPolling = false,
    lostSince = null;

async function ask(path, options = {}) {
    const signal = AbortSignal.timeout(patienceMs);
    const response = await fetch(`/control/${path}`, {signal, ...options}).catch(() => {
        throw new Error("the simulator does not answer");
    });
    const reply = await response.json();
    if (!response.ok) throw new Error(reply.error);
    return reply;
}

function note(state) {
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
}

function render() {
    if (!yard || document.hidden) return;
    fillGroup();
    fillRates();
    fillCards(yard.wallboxes);
    draw();
}

// A simulator that has been restarted counts from one.
function forgetOlderRun(state) {
    if (state.requestCount >= Math.max(0, ...requests.keys())) return;
    requests.clear();
    $("log").replaceChildren();
}

// Adds what happened while this page was not connected.
function recall(history) {
    const others = history.map(({time, wallboxes}) => ({t: Date.parse(time), wallboxes}));
    const missed = others.filter(other => !samples.some(sample => Math.abs(sample.t - other.t) < 1000));
    samples = [...samples, ...missed].sort((one, other) => one.t - other.t);
}

// Called with each state until it has succeeded.
async function learnFaults() {
    const reply = await ask("faults");
    if (faults.length) return;
    faults = reply.faults;
    makeFaultFields();
    render();
}

function open() {
    const opened = new EventSource("/control/events");
    const listen = (name, take) => opened.addEventListener(name, event => take(JSON.parse(event.data)));
    let isNew = true;
    stream = opened;
    watch();
    listen("state", state => {
        watch();
        if (isNew) {
            isNew = isPolling = false;
            clearTimeout(pollTimer);
            setLink("live");
            forgetOlderRun(state);
            limits = []; // A new stream begins with all of them.
        }
        note(state);
    });
    listen("history", news => recall(news.history));
    // Here and not only when they are drawn: a hidden page draws nothing.
    listen("limits", news => {
        limits = recent([...limits, ...news.limits]);
    });
    // The last event of each turn.
    listen("log", news => {
        merge(news.log);
        render();
    });
    opened.onerror = () => stream === opened && lose();
}

function watch() {
    clearTimeout(watchdog);
    watchdog = setTimeout(lose, patienceMs);
}

function lose() {
    clearTimeout(watchdog);
    stream.close();
    stream = null;
    if (!isPolling) poll();
}

async function poll() {
    isPolling = true;
    try {
        const [state, news, received] = await Promise.all(["state", "log", "limits"].map(path => ask(path)));
        if (!isPolling) return; // the stream is back
        setLink("polling");
        forgetOlderRun(state);
        limits = received.limits;
        note(state);
        merge(news.log);
    } catch {
        if (!isPolling) return;
        setLink("lost");
    }
    render();
    if (!stream) open();
    clearTimeout(pollTimer); // of a poll that began before the stream came back and was lost again
    pollTimer = setTimeout(poll, pollMs);
}

function setLink(link) {
    lostSince = link === "lost" ? (lostSince ?? clock(Date.now())) : null;
    $("link").className = `link ${link}`;
    setGlyph($("link"), link);
    setText(
        $("link").querySelector("span"),
        {live: "Live", polling: "Updates every 2 s", lost: "No answer"}[link],
    );
    setText(
        $("outage"),
        {
            live: "",
            polling: "The live connection is interrupted. The page is updated every 2 s instead.",
            lost: `The simulator has not answered since ${lostSince}. The page shows what was known then, and tries again every 2 s.`,
        }[link],
    );
    show($("outage"), link !== "live");
    document.title = `${link === "lost" ? "No answer: " : ""}Charging yard`;
}

/* User actions: each form and button with a path posts to the control endpoint */
let toastTimer = 0;
function say(text) {
    setText($("toast"), text);
    clearTimeout(toastTimer);
    toastTimer = setTimeout(() => setText($("toast"), ""), 6000);
}

async function act(button, path, body) {
    const id = button.closest(".card")?.dataset.id;
    const isCard = id !== undefined;
    const prefix = isCard ? `${id}: ` : "";
    const target = isCard ? `wallboxes/${encodeURIComponent(id)}/${path}` : path;
    try {
        note(await ask(target, {method: "POST", body: JSON.stringify(body)}));
        render();
        say(prefix + (button.dataset.done ?? (faultText() || "The backend answers without faults.")));
        return true;
    } catch (error) {
        say(`${prefix}${button.textContent} failed: ${error.message}`);
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
    const form = event.target;
    if ((await act(event.submitter, form.dataset.path, bodyOf(form))) && "clear" in form.dataset)
        form.reset();
});
document.addEventListener("click", event => {
    const button = event.target.closest("button");
    if (button?.dataset.path) act(button, button.dataset.path, {});
    else if (button?.classList.contains("id"))
        plot($("plotted").value === button.textContent ? "" : button.textContent);
});
document.addEventListener("visibilitychange", render);
function plot(id) {
    $("plotted").value = id;
    history.replaceState(null, "", `#${encodeURIComponent(id)}`); // kept for a reload, and for links
    render();
}
$("plotted").addEventListener("change", event => plot(event.target.value));
addEventListener("hashchange", () => {
    const id = linked([...cards.keys()]);
    if (id) plot(id); // not for a link within the page
});
$("quiet").addEventListener("change", event => $("log").classList.toggle("quiet", event.target.checked));
$("address").textContent = location.host;
new ResizeObserver(([entry]) => {
    plotSize = entry.contentRect;
    render();
}).observe($("plot"));
open();
