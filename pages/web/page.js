// A design in the browser: its sheets, its nets through all levels, findings and values.
//
// The data holds each sheet once (docs/page.md). A use of a sheet is a "visit": made when somebody
// walks there or a net leads there, and kept. A flat net is a base (the visit and the group of nets
// where it begins, or a global) and a range of bits of it. Nothing of a design becomes markup:
// every text is put on the page as text.
'use strict';

// --- the data as records

const roleOf = {leaf: 0, block: 1, port: 2, global: 3};
const ways = ['', 'in', 'out', 'in/out', 'in/out'];

// A flat list as records: `names` says what follows what.
function records(list, names) {
  const all = [];
  for (let i = 0; i < list.length; i += names.length)
    all.push(Object.fromEntries(names.map((name, k) => [name, list[i + k]])));
  return all;
}

// What all searches compare: capitals, with "/" for the separators of simulators.
const folded = text => text.toUpperCase().replace(/[.:]/g, '/');

class Cell {
  constructor(raw, index) {
    this.index = index;
    this.name = raw.name;
    this.file = raw.file;
    this.path = raw.path;  // of its first use
    this.size = raw.size;
    this.paths = raw.paths;
    this.texts = raw.texts;
    this.ends = raw.ends !== 0;  // nothing of it is expanded
    this.groups = records(raw.groups, ['master', 'port', 'width', 'start', 'tied']);
    this.ports = records(raw.ports, ['name', 'group', 'net', 'isRange']);
    this.globals = records(raw.globals, ['which', 'id', 'group', 'net', 'position']);
    this.joins = records(raw.joins, ['a', 'b', 'object', 'why']);
    this.kinds = raw.kinds.map(
        ([symbol, cell, found, why, props]) => ({symbol, cell, found, why, props}));
    this.nets = raw.nets.map(([id, name, group, wires, dots, texts]) => ({
      id, name, group, dots, texts, suffix: '/' + (name || 'N_' + id),
      wires: records(wires, ['look', 'points']),
    }));
    this.insts = raw.insts.map(
        ([id, name, sign, x, y, kind, role, texts, props, groups, bits, portPins]) => ({
          id, name, sign, x, y, role, texts, props, groups, bits: bits || [],
          portPins: portPins || [], kind: kind < 0 ? null : this.kinds[kind], suffix: '/' + name,
        }));
  }

  // The pins of leaves and blocks that are on a group of nets.
  pinsOn(group) {
    if (!this.pinTable) {
      this.pinTable = this.groups.map(() => []);
      for (const inst of this.insts) {
        if (inst.role > roleOf.block || !inst.kind.found) continue;
        inst.groups.forEach((g, pin) => g >= 0 && this.pinTable[g].push({inst, pin}));
      }
    }
    return this.pinTable[group];
  }

  // Objects by their folded names.
  named(key) {
    if (!this.nameTable) {
      this.nameTable = new Map();
      const add = (suffix, object) => {
        const at = folded(suffix);
        if (!this.nameTable.has(at)) this.nameTable.set(at, []);
        this.nameTable.get(at).push(object);
      };
      for (const inst of this.insts) if (inst.role <= roleOf.block) add(inst.suffix, {inst});
      for (const net of this.nets) add(net.suffix, {net, bit: -1});
    }
    return this.nameTable.get(key) || [];
  }

  globalOf(group) {  // that gives a group, no bus, its flat net
    if (this.groups[group].width > 0) return undefined;
    return this.globals.find(global => global.group === group);
  }
}

let design;  // {name, cells, signs, globals, findings, values, top}

function readDesign(raw) {
  design = {name: raw.name, globals: raw.globals, cells: raw.cells.map((c, i) => new Cell(c, i))};
  design.signs = raw.signs.map(([paths, texts, box, pins]) => (
      {paths, texts, box, pins: records(pins, ['name', 'way', 'x', 'y'])}));
  design.bases = raw.globals.map((name, which) => ({which, name}));
  design.top = {cell: design.cells[0], up: null, inst: null, path: '', flats: [], below: new Map()};
  design.places = raw.values.places;
  design.valueFile = raw.values.file;
  design.netValues = new Map(
      records(raw.values.nets, ['path', 'texts']).map(({path, texts}) => [path, texts]));
  design.deviceValues = new Map();
  for (const {path, name, texts} of records(raw.values.devices, ['path', 'name', 'texts'])) {
    if (!design.deviceValues.has(path)) design.deviceValues.set(path, []);
    design.deviceValues.get(path).push({name, texts});
  }
  readFindings(raw);
}

// --- uses of sheets

const isBlock = inst => inst.role === roleOf.block && inst.kind.cell >= 0;

function visitBelow(visit, inst) {
  let below = visit.below.get(inst);
  if (!below) {
    below = {cell: design.cells[inst.kind.cell], up: visit, inst, path: visit.path + inst.suffix,
             flats: [], below: new Map()};
    visit.below.set(inst, below);
  }
  return below;
}

const blocksOf = cell => cell.ends ? [] : cell.insts.filter(isBlock);

// How often a sheet is used in the whole design.
function usesOf(cell) {
  if (!design.uses) {
    design.uses = design.cells.map(() => 0);
    const order = [], seen = new Set();
    const sort = c => {  // sheets above before those below
      if (seen.has(c)) return;
      seen.add(c);
      for (const inst of blocksOf(c)) sort(design.cells[inst.kind.cell]);
      order.unshift(c);
    };
    sort(design.cells[0]);
    design.uses[0] = 1;
    for (const c of order)
      for (const inst of blocksOf(c)) design.uses[inst.kind.cell] += design.uses[c.index];
  }
  return design.uses[cell.index];
}

// --- flat nets

function bitsOf(inst, pin) {
  if (!inst.bits.length) return {position: 0, width: 1, beyond: 0};
  const [position, width, beyond] = inst.bits.slice(3 * pin, 3 * pin + 3);
  return {position, width, beyond};
}

// The group of nets of the sheet above that a port brings to a group of a block's sheet, and from
// which of its bits on; null when none does. It is the same in every use of the sheet above.
function broughtTo(cell, group, above, inst) {
  const {port, width} = cell.groups[group];
  if (!above || port < 0) return null;
  const pin = inst.portPins[port];
  const from = pin >= 0 ? inst.groups[pin] : -1;
  if (!(from >= 0)) return null;
  const bits = bitsOf(inst, pin), isWide = above.groups[from].width > 0;
  if (bits.beyond || bits.width !== Math.max(width, 1)) return null;
  if (width > 0 ? !isWide : cell.ports[port].isRange) return null;
  return {group: from, pin, position: isWide ? bits.position : 0, isWide};
}
const broughtIn = (visit, group) =>
    broughtTo(visit.cell, group, visit.up && visit.up.cell, visit.inst);

// The flat net of a group: {base, lo, hi, by}. by: what gave it.
function flatNet(visit, group) {
  if (visit.flats[group]) return visit.flats[group];
  const {width, tied} = visit.cell.groups[group];
  const brought = broughtIn(visit, group);
  let flat;
  if (brought) {
    const above = flatNet(visit.up, brought.group);
    const lo = above.lo + brought.position;
    const hi = !brought.isWide ? above.hi : lo + Math.max(width, 1);
    flat = {base: above.base, lo, hi, by: 'port'};
  } else {
    const own = visit.cell.globalOf(group);
    const which = own ? own.which : tied;
    if (which >= 0)
      flat = {base: design.bases[which], lo: 0, hi: 1, by: own ? 'global' : 'tied'};
    else
      flat = {base: {visit, group}, lo: 0, hi: Math.max(width, 1), by: 'own'};
  }
  return visit.flats[group] = flat;
}

const isGlobal = net => net.base.which !== undefined;
const meets = (a, b) => a.base === b.base && a.lo < b.hi && b.lo < a.hi;
const widthOfBase = base => base.visit ? base.visit.cell.groups[base.group].width : 0;
const isBit = net => widthOfBase(net.base) > 0 && net.hi - net.lo === 1;

function nameOfBase(base) {
  const {cell} = base.visit;
  return cell.nets[cell.groups[base.group].master].name;
}

function pathOfNet(net) {
  if (isGlobal(net)) return pathOfGlobal(net.base);
  const {visit, group} = net.base, {master} = visit.cell.groups[group];
  const path = visit.path + visit.cell.nets[master].suffix;
  return isBit(net) ? path + '_' + net.lo : path;
}

// A global has the path of what a run meets first: itself, or a net that it is joined to below.
function pathOfGlobal(base) {
  if (base.path !== undefined) return base.path;
  base.path = '/' + base.name;
  for (const cell of design.cells) {
    const visit = visitAt(cell.path);
    if (!visit || cell.ends) continue;
    const isOwn = g => !broughtIn(visit, g);
    if (cell.globals.some(g => g.which === base.which && cell.globalOf(g.group) && isOwn(g.group)))
      break;
    const tied = cell.groups.findIndex((g, i) => g.tied === base.which && isOwn(i));
    if (tied < 0) continue;
    base.path = visit.path + cell.nets[cell.groups[tied].master].suffix;
    break;
  }
  return base.path;
}

// Calls take(inst, group, lo, hi, pin) for every group below that the bits of a group are brought
// to.
function eachBelow(cell, group, lo, hi, take) {
  const isWide = cell.groups[group].width > 0;
  for (const {inst, pin} of cell.pinsOn(group)) {
    if (!isBlock(inst)) continue;
    const below = design.cells[inst.kind.cell];
    if (below.ends) continue;
    const {position, width} = bitsOf(inst, pin);
    const a = isWide ? Math.max(lo, position) - position : 0;
    const b = isWide ? Math.min(hi, position + width) - position : 1;
    if (a >= b) continue;
    inst.portPins.forEach((place, port) => {
      const inner = place === pin ? below.ports[port].group : -1;
      if (inner < 0 || !broughtTo(below, inner, cell, inst)) return;
      take(inst, inner, below.groups[inner].width > 0 ? a : 0,
           below.groups[inner].width > 0 ? b : 1, pin);
    });
  }
}

// The leaf pins on bits of a group.
function leafPins(cell, group, lo, hi) {
  const isWide = cell.groups[group].width > 0;
  return cell.pinsOn(group).filter(({inst, pin}) => {
    if (inst.role !== roleOf.leaf) return false;
    const {position, width} = bitsOf(inst, pin);
    return position >= 0 && (!isWide || (position < hi && lo < position + width));
  });
}

// The groups of a sheet where a global begins: those that no port brings from above.
function rootsOf(cell, above, inst, which) {
  if (cell.ends) return [];
  const roots = [];
  cell.groups.forEach(({tied, width}, group) => {
    if (tied === which && width <= 0 && !broughtTo(cell, group, above, inst)) {
      const own = cell.globalOf(group);
      if (!own || own.which === which) roots.push(group);
    }
  });
  return roots;
}

const sumNames = ['sheets', 'nets', 'in', 'out', 'both'];
const noSums = () => Object.fromEntries(sumNames.map(name => [name, 0]));
const addSums = (to, more) => sumNames.forEach(name => to[name] += more[name]);

// How many sheets, nets and pins the bits of a group come to, with all below.
function sumsOf(cell, group, lo, hi) {
  cell.sums = cell.sums || new Map();
  const key = group + ':' + lo + ':' + hi;
  if (cell.sums.has(key)) return cell.sums.get(key);
  const sums = {...noSums(), sheets: 1, nets: cell.nets.filter(net => net.group === group).length};
  for (const {inst, pin} of leafPins(cell, group, lo, hi)) {
    const way = pinsOf(inst)[pin] ? pinsOf(inst)[pin].way : 1;
    ++sums[way === 1 ? 'in' : way === 2 ? 'out' : 'both'];
  }
  eachBelow(cell, group, lo, hi, (inst, inner, a, b) =>
      addSums(sums, sumsOf(design.cells[inst.kind.cell], inner, a, b)));
  cell.sums.set(key, sums);
  return sums;
}

// The same of a global, from a sheet down; `inst` is the block of the sheet above it.
function sumsOfGlobal(which, cell, above, inst) {
  const holder = inst || cell;
  holder.globalSums = holder.globalSums || new Map();
  if (holder.globalSums.has(which)) return holder.globalSums.get(which);
  const sums = noSums();
  for (const root of rootsOf(cell, above, inst, which)) addSums(sums, sumsOf(cell, root, 0, 1));
  for (const block of blocksOf(cell))
    addSums(sums, sumsOfGlobal(which, design.cells[block.kind.cell], cell, block));
  holder.globalSums.set(which, sums);
  return sums;
}

const sumsOfNet = net => isGlobal(net) ?
    sumsOfGlobal(net.base.which, design.top.cell, null, null) :
    sumsOf(net.base.visit.cell, net.base.group, net.lo, net.hi);

// Every group of a visit that bits of a flat net are on: {visit, group, lo, hi}, from above down.
function* placesBelow(visit, group, lo, hi) {
  yield {visit, group, lo, hi};
  const inner = [];
  eachBelow(visit.cell, group, lo, hi, (...below) => inner.push(below));
  for (const [inst, ...bits] of inner) yield* placesBelow(visitBelow(visit, inst), ...bits);
}
function* placesOfGlobal(which, visit) {
  const above = visit.up && visit.up.cell;
  if (sumsOfGlobal(which, visit.cell, above, visit.inst).sheets === 0) return;
  for (const root of rootsOf(visit.cell, above, visit.inst, which))
    yield* placesBelow(visit, root, 0, 1);
  for (const inst of blocksOf(visit.cell)) yield* placesOfGlobal(which, visitBelow(visit, inst));
}
const placesOf = net => isGlobal(net) ?
    placesOfGlobal(net.base.which, design.top) :
    placesBelow(net.base.visit, net.base.group, net.lo, net.hi);

function* netsIn(net) {
  for (const place of placesOf(net))
    for (const drawn of place.visit.cell.nets)
      if (drawn.group === place.group) yield {...place, drawn};
}
function* pinsIn(net) {
  for (const place of placesOf(net))
    for (const pin of leafPins(place.visit.cell, place.group, place.lo, place.hi))
      yield {...place, ...pin};
}

// A deleted instance has no sign.
const pinsOf = inst => inst.sign >= 0 ? design.signs[inst.sign].pins : [];
const pinName = (inst, pin) => pinsOf(inst)[pin] ? pinsOf(inst)[pin].name : String(pin);

// --- why a net of a sheet is in a flat net

const bitWords = ({base, lo}) =>
    `bit ${base.visit.cell.groups[base.group].start + lo} of bus ${nameOfBase(base)}`;

const globalWords = global => `global ${design.globals[global.which]}, instance I_${global.id}`;

function portWords(net, visit, group, flat) {
  const {port, width} = visit.cell.groups[group], {pin} = broughtIn(visit, group);
  let words = `port ${visit.cell.ports[port].name} of ${visit.path}, ` +
      `pin ${visit.path}/${pinName(visit.inst, pin)}`;
  const all = widthOfBase(net.base);
  if (all > 0 && width < 2) return `${words}, ${bitWords(flat)}`;
  if (all > 0 && width < all) {
    const first = net.base.visit.cell.groups[net.base.group].start + flat.lo;
    words += `, bits ${first} to ${first + width - 1} of bus ${nameOfBase(net.base)}`;
  }
  return words;
}

function tiedWords(visit, group) {
  const {cell, path} = visit, {tied} = cell.groups[group];
  for (const inst of blocksOf(cell)) {
    const below = design.cells[inst.kind.cell];
    for (const [port, {group: inner}] of below.ports.entries()) {
      const pin = inst.portPins[port];
      if (inner < 0 || !(pin >= 0) || inst.groups[pin] !== group) continue;
      if (below.groups[inner].tied !== tied) continue;
      const block = path + inst.suffix;
      return `global ${design.globals[tied]} inside ${block}, pin ${block}/${pinName(inst, pin)}`;
    }
  }
  return `global ${design.globals[tied]}`;
}

// What joined each net of a group to the one that it is known by, by place in the list of nets.
function joinWords(cell, root) {
  cell.reasons = cell.reasons || new Map();
  if (cell.reasons.has(root)) return cell.reasons.get(root);
  const joins = new Map(), words = new Map([[root, '']]), reached = [root];
  for (const join of cell.joins)
    for (const net of [join.a, join.b]) {
      if (!joins.has(net)) joins.set(net, []);
      joins.get(net).push(join);
    }
  for (const from of reached)
    for (const join of joins.get(from) || []) {
      const to = join.a === from ? join.b : join.a;
      if (words.has(to)) continue;
      const other = 'N_' + cell.nets[from].id;
      words.set(to, [`shared vertex ${join.object}`, `same NET name as ${other}`,
                     `same port name as ${other}`, `shared pin P_${join.object}`][join.why]);
      reached.push(to);
    }
  cell.reasons.set(root, words);
  return words;
}

// "" for the net that the flat net begins with.
function reason(net, {visit, group, drawn}) {
  const {cell} = visit, place = cell.nets.indexOf(drawn), flat = flatNet(visit, group);
  if (isBit(net) && flat.hi - flat.lo > 1) {  // the bus that holds it
    const global = cell.globals.find(g => g.net === place && g.position === net.lo);
    return (global ? globalWords(global) + ', ' : '') + bitWords(net);
  }
  let root = cell.groups[group].master, words = '';
  const own = cell.globalOf(group);
  if (flat.by === 'port') {
    root = cell.ports[cell.groups[group].port].net;
    words = portWords(net, visit, group, flat);
  } else if (own) {
    root = own.net;
    words = globalWords(own);
  } else if (flat.by === 'tied' && pathOfNet(net) !== visit.path + cell.nets[root].suffix) {
    words = tiedWords(visit, group);
  }
  return root === place ? words : joinWords(cell, root).get(place) || words;
}

// --- from names to places

// What a path means below a visit, the rest of it folded: {visit, inst, pin, net, bit}; a sheet
// itself has only its visit.
function found(visit, rest) {
  if (rest === '' || rest === '/') return [{visit}];
  const all = [];
  for (let end = rest.indexOf('/', 1); ; end = rest.indexOf('/', end + 1)) {
    const name = end < 0 ? rest : rest.slice(0, end), below = end < 0 ? '' : rest.slice(end);
    for (const object of visit.cell.named(name)) {
      if (below === '') {
        all.push({visit, ...object});
      } else if (object.inst && isBlock(object.inst)) {
        all.push(...found(visitBelow(visit, object.inst), below));
      }
      if (object.inst && below.length > 1) {
        const pin = pinsOf(object.inst).findIndex(p => folded('/' + p.name) === below);
        if (pin >= 0) all.push({visit, inst: object.inst, pin});
      }
    }
    const member = below === '' && name.match(/^(.*)_(\d+)$/);
    if (member)
      for (const {net} of visit.cell.named(member[1]))
        if (net && Number(member[2]) < visit.cell.groups[net.group].width)
          all.push({visit, net, bit: Number(member[2])});
    if (end < 0) return all;
  }
}

// The visit of a path as it stands in the data.
function visitAt(path) {
  const at = found(design.top, folded(path));
  const hit = path === '' ? at[0] : at.find(place => place.inst && isBlock(place.inst));
  if (!hit) return null;
  return hit.inst ? visitBelow(hit.visit, hit.inst) : hit.visit;
}

// Globals that no net of the top has the name of.
function globalFound(key) {
  const which = design.globals.findIndex(name => folded('/' + name) === key);
  if (which < 0) return [];
  for (const place of placesOfGlobal(which, design.top)) {
    const net = place.visit.cell.nets.find(each => each.group === place.group);
    if (net) return [{visit: place.visit, net, bit: -1}];
  }
  return [];
}

// What is typed may be a path of the design, or a name as a simulator writes it: "xr.x2:mp1",
// "r:x2:x" without the letter of its block, "m.xr.x2.mp1" and "@m.xr.x2.mp1[id]" with the letter of
// its device, "v(q_0)", "D[2]".
function pathsMeant(typed) {
  let text = typed.replace(/^@|["']/g, '').replace(/^[vi]\((.*)\)$/i, '$1');
  if (typed.startsWith('@')) text = text.replace(/\[[a-z]\w*\]$/i, '');
  const key = folded(text).replace(/(.)\/+$/, '$1'), keys = [key.startsWith('/') ? key : '/' + key];
  if (key === '0') keys.push('/GROUND');
  if (!key.startsWith('/') && key.includes('/')) {
    const letters = new Set(blocksOf(design.top.cell).map(inst => folded(inst.name)[0]));
    for (const letter of letters) keys.push('/' + letter + key);
    if (key[1] === '/') keys.push(key.slice(1));
  }
  return [...keys, ...keys.map(each => each.replace(/\[(\d+)\]/g, '_$1'))];
}

function placesMeant(typed) {
  for (const key of pathsMeant(typed)) {
    let places = found(design.top, key);
    if (!places.length) places = globalFound(key);
    if (places.length) return places;
  }
  return [];
}

const mostHits = 100, mostLooked = 300000;

// Paths with "*" for any letters, all levels down; only blocks that can hold one are entered.
function starHits(pattern) {
  const key = folded(pattern.startsWith('/') || pattern.startsWith('*') ? pattern : '*' + pattern);
  const head = key.slice(0, key.indexOf('*'));
  const test = new RegExp('^' + key.split('*').map(
      part => part.replace(/[\\^$+?.()|[\]{}]/g, '\\$&')).join('.*') + '$');
  const hits = [];
  let looked = 0;
  const walk = visit => {
    const at = folded(visit.path);
    for (const inst of visit.cell.insts) {
      if (hits.length > mostHits || ++looked > mostLooked) return;
      if (inst.role > roleOf.block) continue;
      const path = at + folded(inst.suffix);
      if (test.test(path)) hits.push({visit, inst});
      const mayHold = head.startsWith(path.slice(0, head.length)) || path.startsWith(head);
      if (isBlock(inst) && mayHold && !visit.cell.ends) walk(visitBelow(visit, inst));
    }
    for (const net of visit.cell.nets)
      if (hits.length <= mostHits && test.test(at + folded(net.suffix)))
        hits.push({visit, net, bit: -1});
  };
  walk(design.top);
  return {hits, isAll: hits.length <= mostHits && looked <= mostLooked};
}

// Words in the names of sheets, parts and nets and in values; each sheet once, at its first use.
function wordHits(text) {
  const words = text.toUpperCase().split(/\s+/).filter(Boolean), hits = [];
  const has = (...texts) => {
    const all = texts.join('\n').toUpperCase();
    return words.every(word => all.includes(word));
  };
  // A whole name, then a part of one, then what only a value or a symbol has.
  const rank = name => words[0] === name.toUpperCase() ? 0 : has(name) ? 1 : 2;
  for (const cell of design.cells) {
    const visit = visitAt(cell.path);
    if (!visit || !usesOf(cell)) continue;
    if (has(cell.name)) hits.push({visit, rank: rank(cell.name)});
    for (const inst of cell.insts)
      if (has(inst.name, ...inst.props, inst.kind ? inst.kind.symbol : ''))
        hits.push({visit, inst, rank: rank(inst.name)});
    for (const net of cell.nets)
      if (net.name && has(net.name)) hits.push({visit, net, bit: -1, rank: rank(net.name)});
    if (hits.length > 20 * mostHits) break;
  }
  hits.sort((a, b) => a.rank - b.rank);
  return {hits: hits.slice(0, mostHits), isAll: hits.length <= mostHits};
}

function search(typed) {
  if (typed.includes('*')) return starHits(typed);
  const places = placesMeant(typed);
  const {hits, isAll} = wordHits(typed);
  const same = (a, b) => a.visit === b.visit && a.inst === b.inst && a.net === b.net;
  return {hits: [...places, ...hits.filter(hit => !places.some(place => same(place, hit)))], isAll};
}

function pathOfPlace({visit, inst, pin, net, bit}) {
  if (inst) return visit.path + inst.suffix + (pin >= 0 ? '/' + pinName(inst, pin) : '');
  if (net) return visit.path + net.suffix + (bit >= 0 ? '_' + bit : '');
  return visit.path + '/';
}

// --- findings of the last check

function readFindings(raw) {
  design.findings = [];
  design.findingFault = '';
  if (raw.findings)
    try {
      const list = JSON.parse(raw.findings);
      if (!Array.isArray(list)) throw new Error('no list');
      design.findings = list.map(one => ({
        severity: String(one.severity), rule: String(one.rule), path: String(one.path),
        sheet: String(one.sheet), id: Number(one.object_id), words: String(one.words),
        waived: one.waived === true, reason: '',
      }));
    } catch (error) {
      design.findingFault = 'The findings cannot be read: ' + error.message;
    }
  const waivers = records(raw.waivers, ['rule', 'path', 'reason', 'date']);
  for (const finding of design.findings) {
    const path = finding.path.toUpperCase();
    const waiver = waivers.find(each => {
      const stem = each.path.toUpperCase();
      return each.rule === finding.rule &&
          (stem.endsWith('*') ? path.startsWith(stem.slice(0, -1)) : path === stem);
    });
    if (!waiver) continue;
    finding.waived = true;
    finding.reason = `${waiver.reason} (${waiver.date})`;
  }
  design.findingsBelow = new Map();  // how many are open in a block and what is below it
  for (const {path, waived} of design.findings)
    for (let end = path.length; end > 0 && !waived; end = path.lastIndexOf('/', end - 1)) {
      const block = folded(path.slice(0, end));
      design.findingsBelow.set(block, (design.findingsBelow.get(block) || 0) + 1);
    }
}

// Where a finding is: what its path names, else its object on the first use of its sheet.
function placeOfFinding(finding) {
  const cell = design.cells.find(each => each.file === finding.sheet);
  const named = found(design.top, folded(finding.path));
  const isIt = place => (place.inst || place.net || {}).id === finding.id;
  const place = named.find(isIt) || named[0];
  if (place && (place.inst || place.net)) return place;
  const visit = place ? place.visit : cell && visitAt(cell.path);
  if (!visit) return null;
  const inst = visit.cell.insts.find(each => each.id === finding.id);
  const net = visit.cell.nets.find(each => each.id === finding.id);
  return inst ? {visit, inst} : net ? {visit, net, bit: -1} : {visit};
}

const findingsOn = cell => design.findings.filter(
    finding => finding.sheet === cell.file && finding.id > 0);

// --- values of the simulation

const valuesOfNet = net => design.netValues.get(pathOfNet(net));

// --- elements

function put(element, attributes, inside) {
  for (const [name, value] of Object.entries(attributes || {})) {
    if (typeof value === 'function') element.addEventListener(name, value);
    else if (value !== false && value !== undefined) element.setAttribute(name, value);
  }
  element.append(...(inside || []).filter(each => each !== null && each !== undefined));
  return element;
}
const html = (tag, attributes, ...inside) => put(document.createElement(tag), attributes, inside);
const svg = (tag, attributes, ...inside) =>
    put(document.createElementNS('http://www.w3.org/2000/svg', tag), attributes, inside);
// The label says what the text does not; '' where the text is enough.
const button = (text, label, act, more) => html('button', {
  type: 'button', title: label || undefined, 'aria-label': label || undefined, click: act, ...more,
}, text);

const parts = {};  // the elements of the page by name

// --- a sheet as SVG; a step of the snap grid is 50

const titleRoom = 60, titleHeight = 30, fontSize = 1.4, letterWidth = 1.2;

function svgText(x, y, height, rotation, text, attributes) {
  const turn = rotation === 1 ? -90 : rotation === 3 ? 90 : 0;
  return svg('text', {
    x, y, 'font-size': height * fontSize, textLength: [...text].length * height * letterWidth,
    lengthAdjust: 'spacingAndGlyphs',
    transform: turn ? `rotate(${turn} ${x} ${y})` : undefined, ...attributes,
  }, text);
}
const svgTexts = list => records(list, ['x', 'y', 'height', 'rotation', 'text'])
    .map(t => svgText(t.x, t.y, t.height, t.rotation, t.text));

const lookClass = look => look.replace(/w\d+/, 'wide') || undefined;
function svgPath(look, d) {
  const width = /w(\d+)/.exec(look);
  const path = svg('path', {class: lookClass(look), d});
  if (width) path.style.setProperty('--width', width[1]);
  return path;
}
const svgPaths = list => records(list, ['look', 'd']).map(({look, d}) => svgPath(look, d));

// What instances with one sign share, made once.
function svgSign(sign) {
  const shared = design.signs[sign];
  shared.drawn = shared.drawn || svg('g', {}, ...svgPaths(shared.paths), ...svgTexts(shared.texts));
  return shared.drawn.cloneNode(true);
}

function svgInst(inst) {
  const group = svgSign(inst.sign);
  group.setAttribute('transform', `translate(${inst.x} ${inst.y})`);
  if (isBlock(inst)) group.setAttribute('class', 'block');
  group.append(...svgTexts(inst.texts));
  return group;
}

function linesOf(points) {
  let d = '';
  for (let i = 0; i < points.length; i += 4)
    d += `M${points[i]} ${points[i + 1]}L${points[i + 2]} ${points[i + 3]}`;
  return d;
}
const squares = dots => records(dots, ['x', 'y', 'r'])
    .map(({x, y, r}) => `M${x - r} ${y - r}h${2 * r}v${2 * r}h${-2 * r}z`).join('');

const svgNet = net => svg('g', {},
                          ...net.wires.map(wire => svgPath(wire.look, linesOf(wire.points))),
                          net.dots.length ? svg('path', {class: 'f', d: squares(net.dots)}) : null,
                          ...svgTexts(net.texts));

// Where a name fits to a net: the middles of its segments, the longest first.
function middlesOf(net) {
  const middles = [];
  for (const {points} of net.wires)
    for (let i = 0; i < points.length; i += 4) {
      const [x1, y1, x2, y2] = points.slice(i, i + 4), w = Math.abs(x2 - x1), h = Math.abs(y2 - y1);
      middles.push({x: (x1 + x2) / 2, y: (y1 + y2) / 2, length: w + h, isUpright: h > w});
    }
  return middles.sort((a, b) => b.length - a.length);
}
const middleOf = net => middlesOf(net)[0];

const boxOf = inst => {
  const [x1, y1, x2, y2] = design.signs[inst.sign].box;
  return {x: inst.x + x1, y: inst.y + y1, w: x2 - x1, h: y2 - y1};
};

const titleOf = visit => visit.up ? `${visit.path}  ${visit.cell.name}` : design.name;

function drawSheet() {
  const {cell} = shown.visit, [width, height] = cell.size;
  const stacks = new Map();  // instances of a vector are drawn at one place
  for (const inst of cell.insts.filter(each => each.sign >= 0)) {
    const place = [inst.sign, inst.x, inst.y, inst.role, ...inst.texts].join();
    if (!stacks.get(place)?.push(inst)) stacks.set(place, [inst]);
  }
  shown.boxes = [...stacks.values()].map(stack => ({stack, ...boxOf(stack[0])}))
      .sort((a, b) => a.w * a.h - b.w * b.h);
  const heights = textBoxes(cell).map(box => box.height).sort((a, b) => a - b);
  shown.letter = heights[heights.length >> 1] || 25;  // as most of them are
  parts.marks = svg('g', {class: 'marks'});
  parts.values = svg('g', {class: 'values'});
  const title = svgText(0, -(titleRoom - titleHeight) / 2, titleHeight, 0, titleOf(shown.visit),
                        {class: shown.visit.up ? 'title up' : 'title'});
  parts.sheet.replaceChildren(
      svg('rect', {class: 'paper', x: 0, y: 0, width, height}), title,
      svg('g', {class: 'frames'}, ...svgPaths(cell.paths), ...svgTexts(cell.texts)),
      svg('g', {class: 'parts'}, ...[...stacks.values()].map(([inst]) => svgInst(inst))),
      svg('g', {class: 'nets'}, ...cell.nets.map(svgNet)), parts.values, parts.marks);
  drawValues();
}

// Where the texts of parts and nets are: from the left end of their baselines on.
const textBoxes = cell => [...cell.insts, ...cell.nets].flatMap(
    ({texts, x = 0, y = 0}) => records(texts, ['x', 'y', 'height', 'rotation', 'text']).map(t => ({
      x: x + t.x, y: y + t.y, height: t.height, width: t.text.length * t.height * letterWidth})));

// The values of nets at the chosen place of the scale.
function drawValues() {
  parts.values.replaceChildren();
  if (!shown.withValues || !design.places.length) return;
  const seen = new Set(), taken = textBoxes(shown.visit.cell), height = 1.2 * shown.letter;
  for (const net of shown.visit.cell.nets) {
    const flat = flatNet(shown.visit, net.group);
    const values = flat.hi - flat.lo === 1 && valuesOfNet(flat);
    if (!values || seen.has(net.group)) continue;
    const text = values[shown.place], width = text.length * height * 0.6;
    const isFree = at => !taken.some(
        other => Math.abs(at.y - other.y) < Math.max(height, other.height) * 1.1 &&
            at.x < other.x + other.width && other.x < at.x + width + height);
    const at = middlesOf(net).find(isFree);
    if (!at) continue;
    seen.add(net.group);
    taken.push({...at, width, height});
    const [x, y] = at.isUpright ? [at.x + 6, at.y] : [at.x, at.y - 6];
    parts.values.append(svg('text', {x, y, 'font-size': height}, text));
  }
}

const ring = (x, y, r) => svg('circle', {cx: x, cy: y, r});
const frame = ({x, y, w, h}, attributes) => svg('rect', {
  x: x - 10, y: y - 10, width: w + 20, height: h + 20, rx: 6, ...attributes});

// What is chosen: its wires and pins on this sheet, or a frame; and the findings of the sheet.
function drawMarks() {
  const {visit, chosen} = shown, {cell} = visit, marks = [];
  for (const finding of findingsOn(cell)) {
    const inst = cell.insts.find(each => each.id === finding.id && each.sign >= 0);
    const net = cell.nets.find(each => each.id === finding.id), at = net && middleOf(net);
    const look = {class: 'finding ' + (finding.waived ? 'waived' : finding.severity)};
    if (inst) marks.push(frame(boxOf(inst), look));
    if (at) marks.push(put(ring(at.x, at.y, 16), look));
  }
  if (chosen && chosen.net) {
    const on = new Set();
    cell.groups.forEach((_, group) => meets(flatNet(visit, group), chosen.net) && on.add(group));
    for (const net of cell.nets)
      if (on.has(net.group)) {
        const wires = net.wires.map(({points}) => svg('path', {d: linesOf(points)}));
        marks.push(...[...wires, ...svgTexts(net.texts)].map(each => put(each, {class: 'hot'})));
      }
    for (const inst of cell.insts)
      inst.groups.forEach((group, pin) => {
        const at = pinsOf(inst)[pin];
        if (!on.has(group) || !at || !pinMeets(visit, inst, pin, chosen.net)) return;
        marks.push(put(ring(inst.x + at.x, inst.y + at.y, 10), {class: 'hot'}));
      });
  }
  if (chosen && chosen.inst && chosen.visit === visit && chosen.inst.sign >= 0)
    marks.push(frame(boxOf(chosen.inst), {class: 'chosen'}));
  parts.marks.replaceChildren(...marks);
}

// Whether the bits of a pin are among those of a flat net.
function pinMeets(visit, inst, pin, net) {
  const flat = flatNet(visit, inst.groups[pin]), {position, width} = bitsOf(inst, pin);
  const lo = flat.lo + (flat.hi - flat.lo > 1 ? position : 0);
  return meets({base: flat.base, lo, hi: flat.hi - flat.lo > 1 ? lo + width : flat.hi}, net);
}

// --- the picture on the screen: a centre, and pixels a unit

const view = {x: 0, y: 0, scale: 1};

function showView() {
  const {clientWidth: w, clientHeight: h} = parts.sheet;
  if (!w || !h) return;
  parts.sheet.setAttribute('viewBox', [view.x - w / 2 / view.scale, view.y - h / 2 / view.scale,
                                       w / view.scale, h / view.scale].join(' '));
  // A line is never much thinner than a pixel; in steps, as each is a new style for all lines.
  const thin = 2 * 2 ** Math.round(Math.log2(Math.max(1, 0.5 / view.scale)));
  if (view.thin !== thin) parts.sheet.style.setProperty('--thin', thin);
  view.thin = thin;
}

function showBox(x, y, w, h) {
  const {clientWidth, clientHeight} = parts.sheet;
  [view.x, view.y] = [x + w / 2, y + h / 2];
  view.scale = Math.min(clientWidth / Math.max(w, 1), clientHeight / Math.max(h, 1), 20);
  showView();
}

// What is drawn, with its title; the paper may be far larger.
function fit() {
  const [width, height] = shown.visit.cell.size;
  let [x1, y1, x2, y2] = [Infinity, Infinity, -Infinity, -Infinity];
  const grow = (x, y) => {
    [x1, y1, x2, y2] = [Math.min(x1, x), Math.min(y1, y), Math.max(x2, x), Math.max(y2, y)];
  };
  for (const {x, y, w, h} of shown.boxes) grow(x, y), grow(x + w, y + h);
  for (const {wires} of shown.visit.cell.nets)
    for (const {points} of wires)
      for (let i = 0; i < points.length; i += 2) grow(points[i], points[i + 1]);
  const isWhole = x1 > x2 || (x2 - x1) * (y2 - y1) > width * height / 4;
  showBox(...(isWhole ? [-20, -titleRoom - 10, width + 40, height + titleRoom + 30] :
                        [x1 - 60, y1 - 60, x2 - x1 + 120, y2 - y1 + 120]));
}

function zoom(factor, clientX, clientY) {
  const box = parts.sheet.getBoundingClientRect();
  const dx = (clientX === undefined ? 0 : clientX - box.left - box.width / 2) / view.scale;
  const dy = (clientY === undefined ? 0 : clientY - box.top - box.height / 2) / view.scale;
  const scale = Math.min(Math.max(view.scale * factor, 0.005), 40);
  view.x += dx * (1 - view.scale / scale);
  view.y += dy * (1 - view.scale / scale);
  view.scale = scale;
  showView();
}

function pan(dx, dy) {
  [view.x, view.y] = [view.x - dx / view.scale, view.y - dy / view.scale];
  showView();
}

// So that a place is in sight, and its letters can be read.
function bringIntoSight(box) {
  const {clientWidth: w, clientHeight: h} = parts.sheet, margin = 40 / view.scale;
  const isIn = Math.abs(box.x + box.w / 2 - view.x) < w / 2 / view.scale - margin &&
      Math.abs(box.y + box.h / 2 - view.y) < h / 2 / view.scale - margin;
  const isSmall = view.scale * shown.letter < 4;
  if (isIn && !isSmall) return;
  [view.x, view.y] = [box.x + box.w / 2, box.y + box.h / 2];
  if (isSmall) view.scale = Math.min(10 / shown.letter, w / (box.w * 1.5), h / (box.h * 1.5));
  showView();
}

// --- what is under the pointer

function pointAt(clientX, clientY) {
  const box = parts.sheet.getBoundingClientRect();
  return {x: view.x + (clientX - box.left - box.width / 2) / view.scale,
          y: view.y + (clientY - box.top - box.height / 2) / view.scale};
}

function distance(x, y, x1, y1, x2, y2) {
  const dx = x2 - x1, dy = y2 - y1, length = dx * dx + dy * dy;
  const t = length ? Math.min(1, Math.max(0, ((x - x1) * dx + (y - y1) * dy) / length)) : 0;
  return Math.hypot(x - x1 - t * dx, y - y1 - t * dy);
}

// A net near to the point, and the smallest instance around it; of several at one place the one
// after that which is chosen.
function under(clientX, clientY, pixels) {
  const {x, y} = pointAt(clientX, clientY), {cell} = shown.visit;
  let nearest = pixels / view.scale, group = -1;
  for (const net of cell.nets)
    for (const {points} of net.wires)
      for (let i = 0; i < points.length; i += 4) {
        const d = distance(x, y, points[i], points[i + 1], points[i + 2], points[i + 3]);
        if (d < nearest) [nearest, group] = [d, net.group];
      }
  for (const inst of cell.insts) {
    if (inst.role > roleOf.block) continue;
    pinsOf(inst).forEach((at, pin) => {
      const d = Math.hypot(x - inst.x - at.x, y - inst.y - at.y);
      if (d < nearest && inst.groups[pin] >= 0) [nearest, group] = [d, inst.groups[pin]];
    });
  }
  const {stack = []} = shown.boxes.find(b => x >= b.x - nearest && x <= b.x + b.w + nearest &&
                                             y >= b.y - nearest && y <= b.y + b.h + nearest) || {};
  const inst = stack[(stack.indexOf(shown.chosen && shown.chosen.inst) + 1) % stack.length];
  if (group >= 0) return {net: flatNet(shown.visit, group), group, inst};
  return {inst};
}

// --- what is shown and chosen, and its link

// chosen: null, {visit, inst}, or {visit, group, net}, a net met on the sheet of the visit.
const shown = {visit: null, chosen: null, place: 0, withValues: true, boxes: []};

const encoded = path => encodeURIComponent(path).replace(/%2F/g, '/');

// "#/XR/X2/MP1" for a part or net of the sheet /XR/X2, "#/XR/X2/" for the sheet alone; "?net" where
// a part has the same name.
function linkOf(visit, chosen) {
  if (!chosen || chosen.visit !== visit) return '#' + encoded(visit.path + '/');
  if (chosen.inst) return '#' + encoded(visit.path + chosen.inst.suffix);
  const {cell} = visit, net = cell.nets[cell.groups[chosen.group].master];
  const isDouble = cell.named(folded(net.suffix)).some(object => object.inst);
  return '#' + encoded(visit.path + net.suffix) + (isDouble ? '?net' : '');
}

function placeOfLink(link) {
  let path = link.replace(/^#/, '');
  const wantsNet = path.endsWith('?net');
  try {
    path = decodeURIComponent(path.replace(/\?net$/, ''));
  } catch {
    return null;
  }
  if (path === '' || path === '/') return {visit: design.top};
  const places = found(design.top, folded(path.replace(/\/+$/, '')));
  if (path.endsWith('/')) {
    const block = places.find(place => place.inst && isBlock(place.inst));
    return block ? {visit: visitBelow(block.visit, block.inst)} : null;
  }
  return places.find(place => Boolean(place.net) === wantsNet) || places[0] || null;
}

function chosenOf({visit, inst, net, bit}) {
  if (inst) return {visit, inst};
  if (!net) return null;
  const flat = flatNet(visit, net.group);
  if (!(bit >= 0)) return {visit, group: net.group, net: flat};
  return {visit, group: net.group, net: {...flat, lo: flat.lo + bit, hi: flat.lo + bit + 1}};
}

// Shows a sheet with what is chosen; `history`: 'push', 'replace' or nothing for the same entry.
function show(visit, chosen, history) {
  const isNew = shown.visit !== visit;
  shown.visit = visit;
  shown.chosen = chosen;
  if (isNew) {
    drawSheet();
    fit();
    for (let up = visit; up; up = up.up) openNodes.add(up);
  }
  drawMarks();
  if (isNew) {
    showCrumbs();
    showTree();
    const row = treeRows.get(visit);
    if (row) row.scrollIntoView({block: 'nearest'});
  }
  markTree();
  showDetails();
  document.title = (visit.path ? visit.path + ' - ' : '') + design.name;
  const link = linkOf(visit, chosen);
  if (history && link !== location.hash)
    window.history[history === 'push' && isNew ? 'pushState' : 'replaceState'](null, '', link);
  say('');
}

function goTo(place, history = 'push') {
  const chosen = chosenOf(place);
  show(place.visit, chosen, history);
  if (chosen && chosen.inst && chosen.inst.sign >= 0) bringIntoSight(boxOf(chosen.inst));
  const at = place.net && middleOf(place.net);
  if (at) bringIntoSight({...at, w: 0, h: 0});
}

function followLink() {
  const place = placeOfLink(location.hash);
  goTo(place || {visit: shown.visit || design.top}, '');
  if (!place) say(`${location.hash}: is not in this design`);
}

function goDown(inst) {
  if (inst && isBlock(inst)) {
    const keeps = shown.chosen && shown.chosen.net ? shown.chosen : null;
    show(visitBelow(shown.visit, inst), keeps, 'push');
  } else if (inst && inst.role === roleOf.block) {
    say(`${shown.visit.path}${inst.suffix}: ${inst.kind.why}`);
  }
}

function goUp() {
  const {up, inst} = shown.visit;
  if (!up) return;
  const keeps = shown.chosen && shown.chosen.net ? shown.chosen : {visit: up, inst};
  show(up, keeps, 'push');
}

function choose(hit) {
  if (hit.net) show(shown.visit, {visit: shown.visit, group: hit.group, net: hit.net}, 'replace');
  else show(shown.visit, hit.inst ? {visit: shown.visit, inst: hit.inst} : null, 'replace');
}

const say = text => parts.status.textContent = text;

// --- breadcrumbs and tree

function showCrumbs() {
  const way = [];
  for (let visit = shown.visit; visit; visit = visit.up) way.unshift(visit);
  parts.crumbs.replaceChildren(...way.flatMap((visit, i) => [
    i ? html('span', {class: 'separator', 'aria-hidden': 'true'}, '/') : '',
    button(nameOf(visit), '', () => walkTo(visit),
           {'aria-current': visit === shown.visit && 'page'}),
  ]));
  parts.crumbs.lastElementChild.scrollIntoView({block: 'nearest', inline: 'nearest'});
}

const nameOf = visit => visit.inst ? visit.inst.name : design.name;
// To a sheet with the net that is chosen.
const walkTo = visit => (
    closePanels(), show(visit, shown.chosen && shown.chosen.net ? shown.chosen : null, 'push'));

const openNodes = new Set(), longNodes = new Set(), mostNodes = 200;
const treeRows = new Map();  // by visit

// Whether the chosen net is on the sheet of a block, or anywhere below it.
function holdsChosen(visit, inst) {
  const net = shown.chosen && shown.chosen.net;
  if (!net) return false;
  if (inst.groups.some((g, pin) => g >= 0 && pinMeets(visit, inst, pin, net))) return true;
  if (isGlobal(net))
    return sumsOfGlobal(net.base.which, design.cells[inst.kind.cell], visit.cell, inst).nets > 0;
  return (net.base.visit.path + '/').startsWith(visit.path + inst.suffix + '/');
}

function treeNode(visit) {
  const blocks = blocksOf(visit.cell), isOpen = openNodes.has(visit) || !visit.up;
  const open = design.findingsBelow.get(folded(visit.path));
  const toggle = () => {
    if (!openNodes.delete(visit)) openNodes.add(visit);
    showTree();
  };
  const row = html('div', {class: 'node'},
      blocks.length && visit.up ?
          button(isOpen ? '▾' : '▸', isOpen ? 'close' : 'open', toggle, {class: 'toggle'}) :
          html('span', {class: 'toggle'}),
      button(nameOf(visit), '', () => walkTo(visit), {class: 'name'}),
      html('span', {class: 'cell'}, visit.up ? visit.cell.name : ''),
      open ? html('span', {class: 'badge', title: open + ' open findings'}, String(open)) : null);
  treeRows.set(visit, row);
  const item = html('li', {role: 'treeitem',
                           'aria-expanded': blocks.length ? String(isOpen) : undefined}, row);
  if (!isOpen || !blocks.length) return item;
  const most = longNodes.has(visit) ? blocks.length : mostNodes;
  const list = html('ul', {role: 'group'},
                    ...blocks.slice(0, most).map(inst => treeNode(visitBelow(visit, inst))));
  if (blocks.length > most)
    list.append(html('li', {}, button(`${blocks.length - most} more`, 'show all', () => {
      longNodes.add(visit);
      showTree();
    }, {class: 'more'})));
  item.append(list);
  return item;
}

function showTree() {
  const {scrollTop} = parts.tree;
  treeRows.clear();
  parts.tree.replaceChildren(html('ul', {role: 'tree'}, treeNode(design.top)));
  parts.tree.scrollTop = scrollTop;
  markTree();
}

// The sheet in view, and the blocks that the chosen net is in.
function markTree() {
  for (const [visit, row] of treeRows) {
    row.classList.toggle('current', visit === shown.visit);
    row.classList.toggle('hot', Boolean(visit.up) && holdsChosen(visit.up, visit.inst));
  }
}

// --- what is known of what is chosen

const mostRows = 100;

// Rows of a list that may be endless; all of them when they are asked for.
function rowsOf(makes, count, row) {
  const list = html('ul', {class: 'rows'});
  const fill = most => {
    list.replaceChildren();
    let made = 0;
    for (const one of makes()) {
      if (++made > most) break;
      list.append(html('li', {}, ...row(one)));
    }
    if (count > most)
      list.append(html('li', {}, button(`all ${count}`, 'show all', () => fill(Infinity),
                                        {class: 'more'})));
  };
  fill(mostRows);
  return list;
}

const linkTo = (text, place, more) =>
    button(text, '', () => goTo(place), {class: 'link', ...more});
const section = (title, ...inside) => [html('h3', {}, title), ...inside];
const table = rows => html('table', {}, ...rows.map(
    row => html('tr', {}, ...row.map((cell, i) => html(i ? 'td' : 'th', {}, cell)))));

function kindOfNet(net) {
  if (isGlobal(net)) return 'global';
  if (isBit(net)) return bitWords(net);
  if (!(widthOfBase(net.base) > 0)) return 'local';
  const {start} = net.base.visit.cell.groups[net.base.group];
  return `bus [${start + net.lo}:${start + net.hi - 1}]`;
}

function valueRows(texts, name) {
  return design.places.map((place, i) => [name ? name + ' at ' + place : 'at ' + place, texts[i]]);
}

function bitButtons(net) {
  const {visit, group} = shown.chosen, {start} = net.base.visit.cell.groups[net.base.group];
  const row = html('p', {});
  for (let lo = net.lo; lo < Math.min(net.hi, net.lo + 256); ++lo) {
    const bit = {...net, lo, hi: lo + 1};
    row.append(button(String(start + lo), pathOfNet(bit),
                      () => show(shown.visit, {visit, group, net: bit}, 'replace'),
                      {class: 'link bit'}));
  }
  return row;
}

function netDetails(net) {
  const sums = sumsOfNet(net), pins = sums.in + sums.out + sums.both, values = valuesOfNet(net);
  const bits = net.hi - net.lo > 1 ? section('Bits', bitButtons(net)) : [];
  return [
    html('h2', {class: 'net'}, pathOfNet(net)),
    html('p', {class: 'kind'}, `net, ${kindOfNet(net)}; pins in ${sums.in} out ${sums.out} ` +
         `both ${sums.both}`),
    values ? table(valueRows(values)) : null, ...bits,
    ...section('Nets of sheets in it, and why',
               rowsOf(() => netsIn(net), sums.nets, one => [
                 linkTo(one.visit.path + one.drawn.suffix,
                        {visit: one.visit, net: one.drawn, bit: -1}),
                 html('span', {class: 'reason'}, reason(net, one) || 'the net itself')])),
    ...section(`${pins} pins`, rowsOf(() => pinsIn(net), pins, ({visit, inst, pin}) => [
      linkTo(`${visit.path}${inst.suffix}/${pinName(inst, pin)}`, {visit, inst, pin},
             {class: 'link pin'}),
      html('span', {class: 'way'}, pinsOf(inst)[pin] ? ways[pinsOf(inst)[pin].way] : '')])),
  ];
}

function propertiesOf(inst) {
  const own = records(inst.props, ['name', 'value']);
  const names = new Set(own.map(p => p.name.toUpperCase()));
  const shared = inst.kind ? records(inst.kind.props, ['name', 'value']) : [];
  return [...own, ...shared.filter(p => !names.has(p.name.toUpperCase()))];
}

function instDetails(visit, inst) {
  const path = visit.path + inst.suffix, props = propertiesOf(inst);
  const values = design.deviceValues.get(path) || [];
  const netLink = group => {
    if (!(group >= 0)) return 'no net';
    const net = flatNet(visit, group);
    return button(pathOfNet(net) + (net.hi - net.lo > 1 ? ` [${net.lo}..${net.hi - 1}]` : ''),
                  '', () => show(visit, {visit, group, net}, 'push'), {class: 'link'});
  };
  const valueOn = group => {
    const values = group >= 0 && valuesOfNet(flatNet(visit, group));
    return values ? values[shown.place] : '';
  };
  const {stack} = shown.boxes.find(box => box.stack.includes(inst)) || {stack: [inst]};
  const isNet = inst.role > roleOf.block;
  return [
    html('h2', {}, path),
    html('p', {class: 'kind'}, ['part', 'block', 'port', 'global'][inst.role] +
         (inst.kind ? ' of ' + inst.kind.symbol : '') +
         (stack.length > 1 ? `; ${stack.length} are drawn here, click for the next one` : '')),
    isBlock(inst) ? button('Open its sheet', '', () => goDown(inst), {class: 'open'}) : null,
    inst.kind && inst.kind.why ? html('p', {class: 'fault'}, inst.kind.why) : null,
    ...(values.length ? section('Values', table(values.flatMap(v => valueRows(v.texts, v.name)))) :
                        []),
    ...(props.length ? section('Properties', table(props.map(p => [p.name, p.value]))) : []),
    ...(isNet ? section('Net', html('p', {}, netLink(inst.groups[0]))) :
        section(`${inst.groups.length} pins`,
                table(inst.groups.map(
                    (group, pin) => [pinName(inst, pin), netLink(group), valueOn(group)])))),
    ...findingRows(findingsOn(visit.cell).filter(finding => finding.id === inst.id)),
  ];
}

const findingRows = list => list.length ? section('Findings', html('ul', {class: 'rows'},
    ...list.map(one => html('li', {}, ...findingRow(one))))) : [];

function findingRow(finding) {
  const state = finding.waived ? 'waived' : finding.severity;
  const place = () => {
    const at = placeOfFinding(finding);
    if (at) goTo(at);
    else say(`${finding.path}: is not in these drawings`);
    if (at) closePanels();
  };
  return [html('span', {class: 'severity ' + state}, state),
          button(finding.path || '/', finding.rule, place, {class: 'link'}),
          html('span', {class: 'reason'}, `${finding.rule}: ${finding.words}`),
          finding.reason ? html('span', {class: 'waiver'}, 'waived: ' + finding.reason) : null];
}

function sheetDetails(visit) {
  const {cell} = visit, uses = usesOf(cell);
  const count = role => cell.insts.filter(inst => inst.role === role).length;
  const notes = cell.insts.filter(inst => inst.kind && inst.kind.why)
      .map(inst => [inst.name, inst.kind.why]);
  return [
    html('h2', {}, visit.path || design.name),
    html('p', {class: 'kind'}, `sheet ${cell.file}, used ${uses === 1 ? 'once' : uses + ' times'}`),
    cell.ends ? html('p', {class: 'fault'}, 'nothing of this sheet is expanded') : null,
    table([['parts', String(count(roleOf.leaf))], ['blocks', String(count(roleOf.block))],
           ['ports', String(count(roleOf.port))], ['nets', String(cell.nets.length)]]),
    ...(notes.length ? section('Left out', table(notes.slice(0, mostRows))) : []),
    ...(design.places.length ? section('Values', html('p', {}, design.valueFile)) : []),
    ...findingRows(findingsOn(cell)),
    html('p', {class: 'hint'}, 'Click a net or a part; double click a block to open it; ' +
         'click the title to go up. Keys: ?'),
  ];
}

function showDetails() {
  const {visit, chosen} = shown;
  const rows = !chosen ? sheetDetails(visit) :
      chosen.net ? netDetails(chosen.net) : instDetails(chosen.visit, chosen.inst);
  parts.details.replaceChildren(...rows.filter(Boolean));
  parts.details.scrollTop = 0;
}

// --- findings and search

function showFindings() {
  const open = design.findings.filter(finding => !finding.waived);
  parts.findings.replaceChildren(
      html('p', {class: 'kind'}, design.findingFault ||
           `${open.length} open, ${design.findings.length - open.length} waived`),
      html('ul', {class: 'rows'}, ...[...open, ...design.findings.filter(f => f.waived)].map(
          finding => html('li', {class: finding.waived ? 'waived' : ''}, ...findingRow(finding)))));
  parts.findingsTab.textContent = `Findings (${open.length})`;
  parts.findingsTab.hidden = !design.findings.length && !design.findingFault;
}

function showHits() {
  const typed = parts.search.value.trim();
  parts.hits.hidden = typed === '';
  if (typed === '') return;
  const {hits, isAll} = search(typed);
  parts.hits.replaceChildren(...hits.map(hit => {
    const kind = hit.inst ? (isBlock(hit.inst) ? 'block' : 'part') : hit.net ? 'net' : 'sheet';
    const uses = usesOf(hit.visit.cell), isOne = uses > 1 && !typed.includes('*');
    return html('li', {}, button(pathOfPlace(hit), '', () => goToHit(hit)),
                html('span', {class: 'kind'},
                     kind + (kind === 'sheet' ? ' ' + hit.visit.cell.name : '') +
                     (isOne ? `, 1 of ${uses} uses` : '')));
  }), hits.length && isAll ? '' :
      html('li', {class: 'kind'}, hits.length ? 'more are not shown' : 'nothing found'));
}

function goToHit(hit) {
  parts.hits.hidden = true;
  parts.search.blur();
  closePanels();
  goTo(hit);
}

// --- hands

// Pointers that are down: one pans, two zoom; one that did not move is a click.
const pointers = new Map();
let lastClick = {time: 0}, moved = 0;

function pointerDown(event) {
  if (event.button > 1) return;
  parts.sheet.setPointerCapture(event.pointerId);
  pointers.set(event.pointerId, {x: event.clientX, y: event.clientY});
  if (pointers.size === 1) moved = 0;
}

function pointerMove(event) {
  const before = pointers.get(event.pointerId);
  if (!before) return event.pointerType === 'mouse' ? hint(event) : undefined;
  const now = {x: event.clientX, y: event.clientY};
  const others = [...pointers].filter(([id]) => id !== event.pointerId).map(([, at]) => at);
  moved += Math.hypot(now.x - before.x, now.y - before.y);
  if (others.length === 1) {
    const [other] = others, spread = at => Math.hypot(at.x - other.x, at.y - other.y);
    zoom(Math.max(spread(now), 1) / Math.max(spread(before), 1), (now.x + other.x) / 2,
         (now.y + other.y) / 2);
    pan((now.x - before.x) / 2, (now.y - before.y) / 2);
  } else if (moved > 4) {
    pan(now.x - before.x, now.y - before.y);
  }
  pointers.set(event.pointerId, now);
}

function pointerUp(event) {
  if (!pointers.delete(event.pointerId) || pointers.size || moved > 4) return;
  if (event.type === 'pointerup') click(event);
}

function click(event) {
  const isTouch = event.pointerType !== 'mouse';
  const isSecond = event.timeStamp - lastClick.time < 400 &&
      Math.hypot(event.clientX - lastClick.x, event.clientY - lastClick.y) < (isTouch ? 30 : 6);
  lastClick = {time: isSecond ? 0 : event.timeStamp, x: event.clientX, y: event.clientY};
  const {y} = pointAt(event.clientX, event.clientY);
  const hit = under(event.clientX, event.clientY, isTouch ? 14 : 6);
  if (isSecond && hit.inst) return goDown((shown.chosen && shown.chosen.inst) || hit.inst);
  if (y < 0 && y > -titleRoom && shown.visit.up && !hit.net && !hit.inst) return goUp();
  choose(hit);
}

// The name of what the mouse is on.
function hint(event) {
  const {net, inst} = under(event.clientX, event.clientY, 6);
  let text = '';
  if (net) {
    const values = net.hi - net.lo === 1 && valuesOfNet(net);
    text = `net ${pathOfNet(net)}${values ? '  ' + values[shown.place] : ''}`;
  } else if (inst) {
    const props = propertiesOf(inst).filter(p => !/^INST$/i.test(p.name))
        .slice(0, 8).map(p => `${p.name}=${p.value}`);
    text = [shown.visit.path + inst.suffix, ...props].join('  ');
  }
  if (parts.status.textContent !== text) say(text);
}

const closePanels = () => document.body.classList.remove('with-tree');

function clearChoice() {
  parts.hits.hidden = parts.help.hidden = true;
  closePanels();
  show(shown.visit, null, 'replace');
}

function toggleValues() {
  parts.valuesButton.setAttribute('aria-pressed', String(shown.withValues = !shown.withValues));
  drawValues();
}

function nextTheme() {
  const themes = ['', 'light', 'dark'], root = document.documentElement;
  const next = themes[(themes.indexOf(root.dataset.theme || '') + 1) % themes.length];
  say('theme: ' + ((root.dataset.theme = next) || 'as the system has it'));
}

const keys = [
  ['/', 'search', () => parts.search.focus()],
  ['u', 'up to the sheet above (also Backspace)', goUp],
  ['Enter', 'open the chosen block', () => goDown(shown.chosen && shown.chosen.inst)],
  ['f', 'fit the sheet', () => fit()],
  ['+', 'larger (wheel)', () => zoom(1.3)],
  ['-', 'smaller', () => zoom(1 / 1.3)],
  ['ArrowLeft', 'move (drag)', () => pan(80, 0)],
  ['ArrowRight', '', () => pan(-80, 0)],
  ['ArrowUp', '', () => pan(0, 80)],
  ['ArrowDown', '', () => pan(0, -80)],
  ['b', 'blocks', () => showPanel('tree')],
  ['i', 'findings', () => showPanel('findings')],
  ['v', 'values on or off', () => toggleValues()],
  ['t', 'theme', () => nextTheme()],
  ['Escape', 'choose nothing', clearChoice],
  ['?', 'these keys', () => parts.help.hidden = !parts.help.hidden],
];

function keyDown(event) {
  const isTyping = event.target === parts.search;
  if (event.ctrlKey || event.metaKey || event.altKey) return;
  if (isTyping) {
    const buttons = [...parts.hits.querySelectorAll('button')];
    if (event.key === 'Enter' && buttons.length) buttons[0].click();
    else if (event.key === 'ArrowDown' && buttons.length) buttons[0].focus();
    else if (event.key === 'Escape') parts.search.blur();
    else return;
    return event.preventDefault();
  }
  if (parts.hits.contains(event.target) && event.key.startsWith('Arrow')) {
    const row = event.target.parentElement, down = event.key === 'ArrowDown';
    const next = down ? row.nextElementSibling : row.previousElementSibling;
    const to = next && next.querySelector('button');
    (to || parts.search).focus();
    return event.preventDefault();
  }
  // A button that has the focus takes Enter itself.
  if (event.key === 'Enter' && event.target.tagName === 'BUTTON') return;
  const key = keys.find(([name]) => name === (event.key === 'Backspace' ? 'u' : event.key));
  if (!key) return;
  event.preventDefault();
  key[2]();
}

function showPanel(name) {
  parts.tree.hidden = name !== 'tree';
  parts.findings.hidden = name !== 'findings';
  for (const [tab, panel] of [[parts.treeTab, 'tree'], [parts.findingsTab, 'findings']])
    tab.setAttribute('aria-pressed', String(panel === name));
  document.body.classList.add('with-tree');
}

// --- the page

function build() {
  const part = (name, element) => parts[name] = element;
  const take = event => {
    shown.place = event.target.selectedIndex;
    drawValues();
    showDetails();
  };
  const places = html('select', {'aria-label': 'where values are taken', change: take},
                      ...design.places.map(place => html('option', {}, place)));
  document.body.append(
      html('header', {},
           button('☰', 'blocks and findings', () => document.body.classList.toggle('with-tree'),
                  {class: 'menu'}),
           part('crumbs', html('nav', {class: 'crumbs', 'aria-label': 'where you are'})),
           html('div', {class: 'search'},
                part('search', html('input', {type: 'search', placeholder: 'Search: path, name, *',
                                              'aria-label': 'search', input: showHits,
                                              focus: showHits})),
                part('hits', html('ul', {class: 'hits', hidden: ''}))),
           part('valuesButton', button('Values', 'values on the sheet', toggleValues,
                                       {'aria-pressed': 'true', class: 'values-button',
                                    hidden: !design.places.length && ''})),
           design.places.length > 1 ? places : null,
           button('Fit', 'the whole sheet', fit), button('◐', 'light or dark', nextTheme),
           button('?', 'keys', () => parts.help.hidden = !parts.help.hidden, {class: 'keys'})),
      html('main', {},
           html('aside', {class: 'left'},
                html('div', {class: 'tabs'},
                     part('treeTab', button('Blocks', '', () => showPanel('tree'),
                                            {'aria-pressed': 'true'})),
                     part('findingsTab', button('Findings', '', () => showPanel('findings'),
                                                {'aria-pressed': 'false'}))),
                part('tree', html('div', {class: 'tree'})),
                part('findings', html('div', {class: 'findings', hidden: ''}))),
           part('sheet', svg('svg', {class: 'sheet', role: 'img', 'aria-label': 'the sheet'})),
           part('details', html('aside', {class: 'details', 'aria-live': 'polite'}))),
      part('status', html('footer', {})),
      part('help', html('div', {class: 'help', hidden: ''}, html('h2', {}, 'Keys'),
                        html('table', {}, ...keys.filter(([, what]) => what).map(
                            ([name, what]) => html('tr', {}, html('th', {}, name),
                                                   html('td', {}, what)))))));
  parts.help.addEventListener('click', () => parts.help.hidden = true);
  const {sheet} = parts;
  sheet.addEventListener('pointerdown', pointerDown);
  sheet.addEventListener('pointermove', pointerMove);
  sheet.addEventListener('pointerup', pointerUp);
  sheet.addEventListener('pointercancel', pointerUp);
  sheet.addEventListener('wheel', event => {
    event.preventDefault();
    const lines = event.deltaMode === 1 ? 16 : 1;
    if (event.shiftKey) pan(-event.deltaY * lines, 0);
    else if (event.deltaX && Math.abs(event.deltaX) > Math.abs(event.deltaY)) pan(-event.deltaX, 0);
    else zoom(Math.exp(-event.deltaY * lines / 600), event.clientX, event.clientY);
  }, {passive: false});
  document.addEventListener('keydown', keyDown);
  document.addEventListener('pointerdown', event => {
    if (!event.target.closest('.search')) parts.hits.hidden = true;
  });
  new ResizeObserver(showView).observe(sheet);
  for (const change of ['popstate', 'hashchange']) window.addEventListener(change, followLink);
  window.addEventListener('beforeprint', fitForPrint);
  window.addEventListener('afterprint', showView);
}

// On paper the sheet is whole, whatever is on the screen.
function fitForPrint() {
  const [width, height] = shown.visit.cell.size;
  parts.sheet.setAttribute('viewBox', `-20 ${-titleRoom} ${width + 40} ${height + titleRoom + 20}`);
}

async function unpacked(text) {
  const bytes = Uint8Array.from(atob(text), letter => letter.charCodeAt(0));
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream('deflate'));
  return JSON.parse(await new Response(stream).text());
}

async function start() {
  try {
    readDesign(await unpacked(document.getElementById('data').textContent));
  } catch (error) {
    document.body.append(html('p', {class: 'fault'}, 'This page is damaged, or this browser is ' +
                              `too old for it: ${error.message}`));
    return;
  }
  document.getElementById('data').remove();
  build();
  showFindings();
  followLink();
}

start();
