'use strict';

// What the device says is text here, and its pictures stand in img elements alone: nothing of it
// becomes a part of the page.

const byId = (id) => document.getElementById(id);
const meta = (name) => document.querySelector(`meta[name=${name}]`).content;

const SHOWN_ENTRIES = 100;
const SILENCE_MS = 6000;  // the server says something every 2 s
const RETRY_MS = 1000;
const SAID_MS = 6000;
const MOA_PER_MIL = 10800 / Math.PI / 1000;
const LEAST_CONTRAST = 2;
const LONGEST_TO_SHORTEST = 20;   // of the fields that get a grid: its lines are a few hundred
const FARTHEST_TO_SHORTEST = 1e3;
const [LEAST_FIELD, LARGEST_FIELD] = [1e-3, 1e6];
const SWATCHES = ['black', 'white', 'red', '#00c853', '#ffb000', '#2f9bff'];

const device = {root: '', reticles: [], faults: [], exchanges: 0, isUp: true};
const cards = new Map();    // by index
const pending = new Map();  // entries of exchanges that have no answer yet
const writings = new Map(); // by file, the number of the event that told of it
let connections = 0;
let isPast = true;          // what comes has happened before this page looked

/* Elements */

function make(tag, className, text) {
    const element = document.createElement(tag);
    if (className) element.className = className;
    if (text !== undefined) element.textContent = text;
    return element;
}

function count(number, what) {
    return `${number.toLocaleString('en')} ${what}${number === 1 ? '' : 's'}`;
}

/* Colours */

function luminance([red, green, blue]) {
    const linear = (value) => value <= 10 ? value / 3294 : ((value / 255 + .055) / 1.055) ** 2.4;
    return .2126 * linear(red) + .7152 * linear(green) + .0722 * linear(blue);
}

function contrast(one, other) {
    const [light, dark] = [luminance(one), luminance(other)].sort((a, b) => b - a);
    return (light + .05) / (dark + .05);
}

// Any text may stand in the place of a colour; none where it is no colour.
function rgbOf(text) {
    const probe = make('i');
    probe.style.color = text;
    if (!probe.style.color) return null;
    document.body.append(probe);
    const numbers = getComputedStyle(probe).color.match(/^rgba?\((\d+), (\d+), (\d+)/);
    probe.remove();
    return numbers && numbers.slice(1, 4).map(Number);
}

function showColour(place, reticle) {
    const dot = make('span', 'dot');
    dot.style.color = reticle.color;
    const colour = make('span', 'colour');
    colour.append(dot, make('span', '', reticle.color));
    place.append(colour);
}

/* Pictures */

// Indexes and files are used again for other data: a picture is that of the latest writing that is
// known, and all are fetched anew after a time without news.
const keyOf = (reticle) =>
    `${reticle.index} ${reticle.file} ${connections}.${writings.get(reticle.file) || 0} ${reticle.color}`;
const pictureOf = (reticle) => `/picture/${reticle.index}?${encodeURIComponent(keyOf(reticle))}`;

// Shows the picture, or `instead` with the reason why there is none.
function showPicture(image, instead, reticle) {
    image.hidden = false;
    instead.hidden = true;
    image.alt = `Picture of ${reticle.name}`;
    image.onerror = async () => {
        const source = image.src;
        const answer = await fetch(source).catch(() => null);
        const reason = answer && !answer.ok ? await answer.text() : 'The picture cannot be drawn.';
        if (image.src !== source) return;
        instead.textContent = reason;
        image.hidden = true;
        instead.hidden = false;
    };
    image.src = pictureOf(reticle);
}

// A field beyond these bounds would have lines without end.
function isDrawable(field) {
    if (field.length !== 4 || !field.every(Number.isFinite)) return false;
    const [x, y, width, height] = field;
    const [shorter, longer] = [Math.min(width, height), Math.max(width, height)];
    return shorter >= LEAST_FIELD && longer <= LARGEST_FIELD && longer <= shorter * LONGEST_TO_SHORTEST &&
        Math.max(Math.abs(x), Math.abs(y)) <= shorter * FARTHEST_TO_SHORTEST;
}

// What a drawing says of its own scale: the field that it shows, and its unit.
async function scaleOf(reticle) {
    const answer = await fetch(pictureOf(reticle)).catch(() => null);
    if (!answer || !answer.ok) return null;
    const root = new DOMParser().parseFromString(await answer.text(), 'image/svg+xml').documentElement;
    const field = (root.getAttribute('viewBox') || '').trim().split(/[\s,]+/).map(Number);
    if (!isDrawable(field)) return null;
    const unit = /Unit:\s*1\s+(milliradian|minute of angle)/.exec(root.querySelector('desc')?.textContent || '');
    return {field, milPerUnit: !unit || unit[1] === 'milliradian' ? 1 : 1 / MOA_PER_MIL, isStated: Boolean(unit)};
}

/* The card with a scale */

function draw(parent, tag, attributes, text) {
    const element = document.createElementNS('http://www.w3.org/2000/svg', tag);
    for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
    if (text !== undefined) element.textContent = text;
    parent.append(element);
}

// The least of 1, 2, 5, 10, 20 ... that gives no more than `most` steps.
function stepFor(length, most) {
    for (let decade = .01; ; decade *= 10) {
        for (const step of [1, 2, 5]) {
            if (length / (step * decade) <= most) return step * decade;
        }
    }
}

function* multiples(step, from, to) {
    for (let number = Math.ceil(from / step); number * step <= to; ++number) yield number;
}

function drawGrid(svg, [x, y, width, height], mil) {
    const step = stepFor(width / mil, 28);
    for (const number of multiples(step * mil, x, x + width)) {
        const at = number * step * mil;
        draw(svg, 'path', {class: number % 5 ? 'grid' : 'grid five', d: `M${at} ${y}v${height}`});
    }
    for (const number of multiples(step * mil, y, y + height)) {
        const at = number * step * mil;
        draw(svg, 'path', {class: number % 5 ? 'grid' : 'grid five', d: `M${x} ${at}h${width}`});
    }
}

// A ruler across the field at height `at`; its ticks point to the edge of the field.
function drawRuler(svg, [x, , width], unit, name, at, side) {
    const [left, right] = [x + width * .19, x + width * .81];
    const step = stepFor((right - left) / unit, 10);
    const tick = width * .018 * side;
    const size = width * .026;
    draw(svg, 'path', {class: name, d: `M${left} ${at}H${right}`});
    for (const number of multiples(step * unit / 5, left, right)) {
        const place = number * step * unit / 5;
        const isLabelled = number % 5 === 0;
        draw(svg, 'path', {class: name, d: `M${place} ${at}v${isLabelled ? tick : tick / 2}`});
        if (isLabelled) {
            draw(svg, 'text', {class: name, x: place, y: at + tick + size * .8 * side, 'font-size': size},
                 Number((Math.abs(number) / 5 * step).toPrecision(4)));
        }
    }
    draw(svg, 'text', {class: name, x: x + width * .37, y: at + tick + size * 2.2 * side, 'font-size': size},
         name === 'mil' ? 'milliradians' : 'minutes of angle');
}

function drawScale(scale) {
    const svg = byId('scale');
    svg.replaceChildren();
    if (!scale) return;
    const [x, y, width, height] = scale.field;
    const mil = 1 / scale.milPerUnit;
    svg.setAttribute('viewBox', scale.field.join(' '));
    svg.setAttribute('stroke-width', width * .0022);
    drawGrid(svg, scale.field, mil);
    drawRuler(svg, scale.field, mil / MOA_PER_MIL, 'moa', y + height * .17, -1);
    drawRuler(svg, scale.field, mil, 'mil', y + height * .83, 1);
}

function fieldText(scale) {
    const mil = scale.field[2] * scale.milPerUnit;
    const number = (value) => Number(value.toPrecision(3)).toLocaleString('en');
    return `field ${number(mil)} mil, ${number(mil * MOA_PER_MIL)} MOA` + (scale.isStated ? '' : ' (unit not stated: taken as mil)');
}

/* The eyepiece */

// The target stands where the drawing has its point of aim, or in the middle.
function aimScene(scale) {
    const [, y, , height] = scale ? scale.field : [0, -1, 0, 2];
    const part = -y / height;
    const middle = part > .2 && part < .8 ? part : .5;
    byId('scene').setAttribute('viewBox', `0 ${267 - 400 * middle} 400 400`);
}

let seenKey = '';

async function showActive() {
    const active = device.reticles.find((reticle) => reticle.active);
    byId('eyepiece').dataset.away = device.isUp ? 'no' : 'yes';
    byId('active-name').textContent = active ? active.name || 'No name' : 'No reticle is active';
    const key = active ? `${keyOf(active)} ${active.name}` : '';
    if (key === seenKey) return;
    seenKey = key;
    const [image, facts] = [byId('active-picture'), byId('active-facts')];
    facts.replaceChildren();
    drawScale(null);
    if (!active) {
        image.hidden = true;
        byId('nothing').hidden = true;
        return;
    }
    showPicture(image, byId('nothing'), active);
    image.style.color = active.color;
    const rgb = rgbOf(active.color);
    byId('eyepiece').dataset.lit = rgb && luminance(rgb) > .05 ? 'yes' : 'no';
    facts.append(make('span', '', `Index ${active.index}`));
    showColour(facts, active);
    const scale = await scaleOf(active);
    if (seenKey !== key) return;
    aimScene(scale);
    if (!scale) return;
    drawScale(scale);
    facts.append(make('span', '', fieldText(scale)));
}

/* The shelf */

function newCard(index) {
    const card = {
        key: '', box: make('article', 'reticle'), ground: make('div', 'ground'), image: make('img'), text: make('p'),
        name: make('h3'), facts: make('p', 'facts muted'), activate: make('button'), edit: make('button', '', 'Edit…'),
    };
    card.name.dir = 'auto';
    card.activate.type = card.edit.type = 'button';
    card.activate.onclick = () => command(['activate', String(index)], 'Active now');
    card.edit.onclick = () => openEditor(index);
    const [about, line, buttons] = [make('div', 'about'), make('div', 'line'), make('div', 'buttons')];
    card.ground.append(card.image, card.text);
    line.append(card.name, make('span', 'muted', String(index)));
    buttons.append(card.activate, card.edit);
    about.append(line, card.facts, buttons);
    card.box.append(card.ground, about);
    return card;
}

function fillCard(card, reticle) {
    const key = keyOf(reticle);
    if (card.key !== key) {
        card.key = key;
        showPicture(card.image, card.text, reticle);
        const rgb = rgbOf(reticle.color);
        const isClose = (ground) => rgb && contrast(rgb, ground) < LEAST_CONTRAST;
        card.ground.classList.toggle('near-dark', Boolean(isClose([0x0b, 0x0e, 0x12])));
        card.ground.classList.toggle('near-light', Boolean(isClose([0xf6, 0xf7, 0xf4])));
    }
    card.box.classList.toggle('active', reticle.active);
    card.name.textContent = reticle.name || 'No name';
    card.facts.replaceChildren();
    showColour(card.facts, reticle);
    if (reticle.deletable) card.facts.append(make('span', '', 'deletable'));
    card.activate.disabled = reticle.active;
    card.activate.textContent = reticle.active ? 'Active' : 'Activate';
    card.edit.setAttribute('aria-label', `Edit ${reticle.name}`);
}

function showShelf() {
    const left = new Set(cards.keys());
    device.reticles.forEach((reticle, place) => {
        left.delete(reticle.index);
        if (!cards.has(reticle.index)) cards.set(reticle.index, newCard(reticle.index));
        const card = cards.get(reticle.index);
        fillCard(card, reticle);
        const there = byId('cards').children[place];
        if (there !== card.box) byId('cards').insertBefore(card.box, there || null);
    });
    for (const index of left) {
        cards.get(index).box.remove();
        cards.delete(index);
    }
    byId('count').textContent = count(device.reticles.length, 'reticle');
}

/* All of the device's state */

function show() {
    showActive();
    showShelf();
    byId('summary').textContent = `rtos-sim, root ${device.root}`;
    byId('armed').replaceChildren(...device.faults.map((fault) => make('li', 'tag', fault)));
    byId('armed-none').hidden = device.faults.length > 0;
    byId('disarm').hidden = device.faults.length === 0;
    byId('exchange-count').textContent = device.exchanges ? `${device.exchanges.toLocaleString('en')} so far` : '';
    if (byId('link').dataset.state !== 'gone') showLink(device.isUp ? 'live' : 'down');
}

function showLink(state) {
    const texts = {live: 'Live', down: 'Device is away', gone: 'No simulator, or too many pages – trying again'};
    byId('link').dataset.state = state;
    if (byId('link-text').textContent !== texts[state]) byId('link-text').textContent = texts[state];
}

/* The exchanges */

const timeOf = (event) => {
    const time = new Date(event.time);
    return `${time.toLocaleTimeString('en-GB')}.${String(time.getMilliseconds()).padStart(3, '0')}`;
};

function addEntry(entry) {
    byId('quiet').hidden = true;
    if (!isPast) entry.classList.add('fresh');
    byId('feed').prepend(entry);
    while (byId('feed').children.length > SHOWN_ENTRIES) byId('feed').lastElementChild.remove();
}

function addNote(event, text) {
    const note = make('li', 'note');
    note.append(make('time', '', timeOf(event)), make('span', '', text));
    addEntry(note);
}

// JSON without the blanks between its parts; other texts as they are.
function compact(text) {
    try {
        JSON.parse(text);
    } catch (error) {
        return text;
    }
    return text.replace(/"(?:[^"\\]|\\.)*"|\s+/g, (part) => part[0] === '"' ? part : '');
}

function addText(entry, mark, text) {
    const pre = make('pre', '', compact(text));
    pre.dataset.mark = mark;
    entry.files.before(pre);
}

function newEntry(event) {
    const entry = {box: make('li', 'exchange'), line: make('div', 'line'), took: make('span', 'took'), files: make('p', 'files'), result: make('span', 'tag waits', 'waits')};
    entry.line.append(make('time', '', timeOf(event)), make('span', 'muted', `#${event.exchange}`),
                      make('b', '', event.message || 'No known message'), entry.result, entry.took);
    entry.box.append(entry.line, entry.files);
    pending.set(event.exchange, entry);
    addEntry(entry.box);
    return entry;
}

function onReceived(event) {
    device.exchanges = Math.max(device.exchanges, event.exchange);
    addText(newEntry(event), '→', event.request);
}

function onAnswered(event) {
    const entry = pending.get(event.exchange) || newEntry(event);
    pending.delete(event.exchange);
    const isRefused = event.ret_val !== undefined && event.ret_val !== 0;
    const kind = event.kind === 'spoiled' ? 'spoiled' : isRefused ? 'refused' : 'good';
    entry.box.classList.add(kind);
    entry.result.remove();
    const tags = kind === 'spoiled' ? event.faults : [kind === 'refused' ? `refused: ${event.ret_val}` : 'OK'];
    entry.took.before(...tags.map((text) => make('span', `tag ${kind}`, text)));
    entry.took.textContent = event.ms < 1 ? 'under 1 ms' : `${event.ms.toLocaleString('en')} ms`;
    addText(entry, '←', event.answer || 'nothing');
    if (event.reason) entry.files.before(make('p', 'reason', event.reason));
}

function onFile(event) {
    if (event.kind === 'written') writings.set(event.file, event.event);
    const text = event.kind === 'written' ? `wrote ${event.file}, ${count(event.bytes, 'byte')}` : `removed ${event.file}`;
    const open = [...pending.values()].pop();
    if (open) open.files.append(make('span', '', text));
    else addNote(event, text);
}

const handlers = {
    received: onReceived,
    answered: onAnswered,
    spoiled: onAnswered,
    written: onFile,
    removed: onFile,
    changed: (event) => {
        device.reticles = event.reticles;
        if (event.by === 'user') addNote(event, 'The device’s user has changed the reticles');
    },
    faults: (event) => {
        // A fault that has happened stands beside its exchange.
        if (event.faults.some((fault) => !device.faults.includes(fault))) addNote(event, `Armed: ${event.faults.join(', ')}`);
        device.faults = event.faults;
    },
    down: (event) => {
        device.isUp = false;
        addNote(event, 'The device has gone away');
    },
    up: (event) => {
        device.isUp = true;
        addNote(event, 'The device is there again');
    },
};

/* The connection */

let watch = 0;

function connect() {
    const source = new EventSource('/events');
    const lost = () => {
        clearTimeout(watch);
        source.close();
        showLink('gone');
        setTimeout(connect, RETRY_MS);
    };
    const alive = () => {
        clearTimeout(watch);
        watch = setTimeout(lost, SILENCE_MS);
    };
    source.onerror = lost;
    source.addEventListener('beat', alive);
    source.addEventListener('hello', (message) => {
        // A simulator that was started anew has a page, and a token, of its own.
        if (message.data !== meta('run')) return location.reload();
        alive();
        isPast = true;
        ++connections;
        writings.clear();
        pending.clear();
        device.faults = [];
        byId('feed').replaceChildren();
        byId('quiet').hidden = false;
    });
    source.addEventListener('event', (message) => {
        alive();
        const event = JSON.parse(message.data);
        handlers[event.kind]?.(event);
        if (!isPast) show();
    });
    source.addEventListener('status', (message) => {
        alive();
        Object.assign(device, JSON.parse(message.data));
        isPast = false;
        showLink('live');
        show();
    });
    alive();
}

/* Commands */

let saidTimer = 0;

function say(text, isWrong) {
    clearTimeout(saidTimer);
    byId('said').textContent = text;
    byId('said').classList.toggle('wrong', isWrong);
    saidTimer = setTimeout(() => { byId('said').textContent = ''; }, SAID_MS);
}

// Says what came of it. Returns whether it was done.
async function command(words, done) {
    try {
        const answer = await fetch('/command', {method: 'POST', headers: {'X-Rtos-Sim-Token': meta('token')}, body: JSON.stringify(words)});
        if (answer.ok) {
            say(done, false);
        } else if (answer.headers.get('Content-Type') === 'application/json') {
            say(`Not done: ${(await answer.json()).error}`, true);
        } else {
            say(`Not done: ${await answer.text()}`, true);
        }
        return answer.ok;
    } catch (failure) {
        say('Not done: the simulator does not answer', true);
        return false;
    }
}

let edited = null;
let shown = null;  // the fields as they hold the edited reticle: without its newlines

function openEditor(index) {
    edited = device.reticles.find((reticle) => reticle.index === index);
    byId('edit-title').textContent = `Reticle ${index}`;
    byId('edit-name').value = edited.name;
    byId('edit-colour').value = edited.color;
    shown = {name: byId('edit-name').value, colour: byId('edit-colour').value};
    byId('edit-deletable').checked = edited.deletable;
    byId('delete').disabled = !edited.deletable || edited.active;
    byId('edit').showModal();
}

async function saveEdited() {
    const [index, name, colour] = [String(edited.index), byId('edit-name').value, byId('edit-colour').value];
    const isDeletable = byId('edit-deletable').checked;
    if (name !== shown.name && !await command(['rename', index, name], 'Renamed')) return;
    if (colour !== shown.colour && !await command(['color', index, colour], 'In another colour now')) return;
    if (isDeletable !== edited.deletable) await command(['deletable', index, isDeletable ? 'yes' : 'no'], isDeletable ? 'May be deleted now' : 'Cannot be deleted now');
}

function chooseFaultArgument() {
    const {argument, start} = byId('fault-kind').selectedOptions[0].dataset;
    byId('fault-argument-field').hidden = !argument;
    byId('fault-argument').required = Boolean(argument);
    byId('fault-argument-name').textContent = argument || '';
    byId('fault-argument').value = start || '';
}

function onSubmit(form, action) {
    byId(form).addEventListener('submit', (event) => {
        if (byId(form).method !== 'dialog') event.preventDefault();
        action();
    });
}

function wireButtons() {
    onSubmit('fault-form', () => {
        const argument = byId('fault-argument').value;
        const fault = byId('fault-kind').value + (argument ? `:${argument}` : '');
        command(['fault', fault, byId('fault-when').value], `Armed: ${fault}`);
    });
    byId('disarm').onclick = () => command(['faults', 'off'], 'Nothing is armed any more');
    byId('fault-kind').onchange = chooseFaultArgument;
    onSubmit('restart-form', () => command(['restart', '--down', byId('restart-seconds').value], 'It restarts'));
    byId('reset').onclick = () => byId('resetting').showModal();
    onSubmit('resetting-form', () => command(['reset'], 'Back to the factory set'));
    byId('add').onclick = () => {
        byId('adding-form').reset();
        byId('adding').showModal();
    };
    onSubmit('adding-form', async () => {
        const name = byId('adding-name').value;
        await command(['add', name, await byId('adding-file').files[0].text()], `Added: ${name}`);
    });
    onSubmit('edit-form', saveEdited);
    byId('delete').onclick = async () => {
        if (await command(['delete', String(edited.index)], `Deleted: ${edited.name}`)) byId('edit').close();
    };
    document.querySelectorAll('[data-close]').forEach((button) => { button.onclick = () => button.closest('dialog').close(); });
    byId('swatches').append(...SWATCHES.map((colour) => {
        const button = make('button');
        button.type = 'button';
        button.style.color = colour;
        button.title = colour;
        button.setAttribute('aria-label', colour);
        button.onclick = () => { byId('edit-colour').value = colour; };
        return button;
    }));
}

/* The ground */

// A browser that keeps nothing for pages throws.
function remembered(name) {
    try {
        if (name) localStorage.setItem('ground', name);
        return localStorage.getItem('ground');
    } catch (error) {
        return name;
    }
}

function chooseGround(name) {
    byId('eyepiece').dataset.ground = name;
    remembered(name);
}

function wireGrounds() {
    const byScheme = matchMedia('(prefers-color-scheme: dark)').matches ? 'dusk' : 'day';
    const asked = new URLSearchParams(location.search).get('ground');
    const names = [asked, remembered(), byScheme];
    const inputs = [...document.querySelectorAll('[name=ground]')];
    const chosen = inputs.find((input) => input.value === names.find((name) => inputs.some((other) => other.value === name)));
    chosen.checked = true;
    byId('eyepiece').dataset.ground = chosen.value;
    inputs.forEach((input) => { input.onchange = () => chooseGround(input.value); });
}

wireGrounds();
wireButtons();
chooseFaultArgument();
connect();
