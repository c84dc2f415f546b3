"""Reads the flat netlist that a RUN of KIVO leaves in a design directory.

    import kivo

    with kivo.load("register") as design:
        for net in design.nets():
            print(net.path, net.properties, [pin.path for pin in net.pins()])

What the iterators give are plain records: their fields stay when the design is closed. Asking a
record for others (net.pins(), pin.instance()) asks the design again.

libkvi, which does the reading, holds one design at a time and is not for several threads: loading
a second design closes the first. It is looked for at the path in the variable KIVO_LIBKVI, then
beside this module's installation, then where the system's loader looks.
"""

from __future__ import annotations

import ctypes
import json
import os
import pathlib
import struct
from collections.abc import Iterator
from ctypes import POINTER, byref, c_char_p, c_float, c_int8, c_int16, c_int32, c_int64
from typing import Any, TypedDict, Union

Value = Union[str, "tuple[int, int, int]", "tuple[float, float, float]"]
Path = Union[str, "os.PathLike[str]"]

__all__ = ["Change", "Design", "Error", "Instance", "Macro", "MacroPin", "Net", "Pin", "diff",
           "load"]


class Change(TypedDict):
    """A change between two designs: `change` says what ("net split"), `before` and `after` are
    paths; `values` have `name`, `before`, `after`, `pins` have `pin`, `before`, `after`."""

    change: str
    before: str
    after: str
    values: list[dict[str, str]]
    pins: list[dict[str, str]]


class Error(Exception):
    """A design that cannot be loaded, or no longer is. `status` is that of kvi_load, or 0."""

    def __init__(self, message, status=0):
        super().__init__(message)
        self.status = status


# --- the records of libkvi

class _String(ctypes.Structure):
    _fields_ = [("len", c_int32), ("charp", POINTER(ctypes.c_char))]

    def text(self):
        return ctypes.string_at(self.charp, self.len).decode("latin-1") if self.charp else ""


class _Value(ctypes.Union):
    _fields_ = [("text", _String), ("integers", c_int32 * 3), ("reals", c_float * 3)]


class _Property(ctypes.Structure):
    _fields_ = [("name", _String), ("vtype", c_int16), ("value", _Value), ("buffer", c_char_p)]

    def decoded(self):
        if self.vtype == 0:
            return self.value.text.text()
        return tuple(self.value.reals if self.vtype == 3 else self.value.integers)


_PROPERTIES = [("nb_of_property", c_int8), ("prop", POINTER(_Property) * 20)]
_LOCATION = [("x", c_float), ("y", c_float)]
_RANGE = [("pin_start", c_int16), ("pin_end", c_int16), ("pin_net_start", c_int16)]


class _NetRecord(ctypes.Structure):
    _fields_ = [("self_id", c_int32), ("name", _String), ("net_type", c_int16),
                ("net_kind", c_int16), ("net_bus_start", c_int16), ("net_bus_end", c_int16),
                ("sim_path", _String), ("bus", c_int32), ("father_net", c_int32),
                ("first_sub_net", c_int32), ("next_sub_net", c_int32),
                ("netind_start", c_int32)] + _PROPERTIES


class _InstanceRecord(ctypes.Structure):
    _fields_ = [("self_id", c_int32), ("name", _String), ("sim_path", _String),
                ("file_path", _String), ("primitive", c_int32), ("owning_instance", c_int32),
                *_PROPERTIES, *_LOCATION, ("timing_index", c_int16)]


class _PinRecord(ctypes.Structure):
    _fields_ = [("self_id", c_int32), ("name", _String), ("pin_type", c_int16),
                ("sim_path", _String), ("instance", c_int32),
                ("net", c_int32)] + _RANGE + _PROPERTIES + _LOCATION


class _MacroRecord(ctypes.Structure):
    _fields_ = [("self_id", c_int32), ("name", _String), ("sim_path", _String),
                ("file_path", _String)] + _PROPERTIES + [("timing_index", c_int16)]


class _MacroPinRecord(ctypes.Structure):
    _fields_ = [("self_id", c_int32), ("name", _String), ("sim_path", _String),
                ("macro", c_int32), ("net", c_int32)] + _RANGE + _PROPERTIES


class _Place(ctypes.Structure):
    _fields_ = [("object_id", c_int32), ("macro", c_int32), ("sheet_len", c_int32),
                ("sheet", POINTER(ctypes.c_char))]


class _Bulk:
    """The rows of all pins of a design, read in three calls or so."""

    _PIN, _VALUE = struct.Struct("2i4h2i"), struct.Struct("6i3f")

    def __init__(self, kvi):
        kvi.kvi_get_characters.restype = POINTER(ctypes.c_char)
        kvi.kvi_get_pin_property_name.restype = c_char_p
        length = c_int32()
        characters = kvi.kvi_get_characters(byref(length))
        self.text = ctypes.string_at(characters, length.value).decode("latin-1")
        self.count = kvi.kvi_get_nb_of_pins()
        rows = ctypes.create_string_buffer(max(self.count, 1) * self._PIN.size)
        self.read = kvi.kvi_get_pins(1, self.count, rows)
        self.pins = self._PIN.iter_unpack(rows.raw[:self.read * self._PIN.size])
        self.names, columns = [], []
        while name := kvi.kvi_get_pin_property_name(len(self.names)):
            rows = ctypes.create_string_buffer(max(self.count, 1) * self._VALUE.size)
            kvi.kvi_get_pin_values(len(self.names), 1, self.count, rows)
            columns.append(self._VALUE.iter_unpack(rows.raw[:self.read * self._VALUE.size]))
            self.names.append(name.decode("latin-1"))
        self.values = zip(*columns) if columns else iter([()] * self.read)

    def properties(self, values):
        """The properties of a pin, from its rows."""
        properties = {}
        for name, (kind, at, length, *numbers) in zip(self.names, values):
            value = (self.text[at:at + length] if kind == 0 else
                     tuple(numbers[3:] if kind == 3 else numbers[:3]))
            properties.setdefault(name, value)
        return properties


# --- what users get

class _Object:
    """`index` (from 1), `name`, `path` and `properties`: by name a text, or three numbers
    (integers; whole time steps; reals). Asked of the design while it is open: `object_id`, its
    number on the sheet that it is drawn on; `sheet`, the path of that sheet's file; `block`, the
    macro whose sheet it is, None for the primary one."""

    # Of each kind of object: its record, its name in the functions of libkvi, its number in others.
    _record: type[ctypes.Structure]
    _get: str
    _kind: int

    index: int
    name: str
    path: str
    properties: dict[str, Value]

    def __init__(self, design: Design, record: Any) -> None:
        self._design = design
        self.index = record.self_id
        self.name = record.name.text()
        self.path = record.sim_path.text()
        self.properties = {}
        for entry in record.prop[:record.nb_of_property]:
            self.properties.setdefault(entry.contents.name.text(), entry.contents.decoded())

    def __repr__(self):
        return f"<kivo.{type(self).__name__} {self.index} {self.path!r}>"

    @property
    def object_id(self) -> int:
        return self._design._place(self).object_id

    @property
    def sheet(self) -> str:
        place = self._design._place(self)
        return ctypes.string_at(place.sheet, place.sheet_len).decode("latin-1")

    @property
    def block(self) -> Macro | None:
        macro = self._design._place(self).macro
        return self._design.macro(macro) if macro else None


class Net(_Object):
    """A flat net. `type`: 1 a net (members of a bus too), 2 a named member of a bus, 3 a bus, which
    has the range `first_bit`..`last_bit`. `kind`: 0 local, 1 bus or member, 2 port, 3 other child,
    4 global. `bus` is the index of the bus of a member, else 0."""

    _record, _get, _kind = _NetRecord, "net", 2

    type: int
    kind: int
    bus: int
    first_bit: int
    last_bit: int

    def __init__(self, design, record):
        super().__init__(design, record)
        self.type, self.kind, self.bus = record.net_type, record.net_kind, record.bus
        self.first_bit, self.last_bit = record.net_bus_start, record.net_bus_end
        self._first_member = record.netind_start

    def inputs(self) -> Iterator[Pin]:
        """Its input pins; a bidirectional pin is among inputs and outputs."""
        return self._design._chain(self.index, "in")

    def outputs(self) -> Iterator[Pin]:
        """Its output pins."""
        return self._design._chain(self.index, "out")

    def pins(self) -> Iterator[Pin]:
        """All its pins, each once."""
        yield from self.inputs()
        yield from (pin for pin in self.outputs() if pin.type == 2)

    @property
    def drivers(self) -> list[Pin]:
        """The pins that may drive it: its outputs, bidirectional ones among them."""
        return list(self.outputs())

    @property
    def loads(self) -> list[Pin]:
        """The pins that it drives: its inputs, bidirectional ones among them."""
        return list(self.inputs())

    def members(self) -> Iterator[Net]:
        """Of a bus: its nets, from the first bit on."""
        for i in range(abs(self.last_bit - self.first_bit) + 1 if self.type == 3 else 0):
            yield self._design.net(self._first_member + i)


class Pin(_Object):
    """A pin of an instance. `type`: 1 input, 2 output, 3 and 4 bidirectional. Its bits
    `first_bit`..`last_bit` meet those of its net from `net_first_bit` on."""

    _record: type[ctypes.Structure] = _PinRecord
    _get, _kind = "pin", 4

    type: int
    first_bit: int
    last_bit: int
    net_first_bit: int
    net_index: int
    owner_index: int

    def __init__(self, design, record):
        super().__init__(design, record)
        self.type = getattr(record, "pin_type", 0)
        self.first_bit, self.last_bit = record.pin_start, record.pin_end
        self.net_first_bit = record.pin_net_start
        self.net_index = record.net
        self.owner_index = record.macro if isinstance(record, _MacroPinRecord) else record.instance

    def net(self) -> Net | None:
        """Its net; None when it is on none. Of a bus, its bits are the members."""
        return self._design.net(self.net_index) if self.net_index else None

    def instance(self) -> Instance:
        """The instance that it belongs to."""
        return self._design.instance(self.owner_index)


class _BulkPin(Pin):
    """A pin of pins(): made of rows, its properties and name when they are asked for."""

    def __init__(self, design, index, row, values, bulk):
        self._design, self._values, self._bulk = design, values, bulk
        self.index = index
        (self.owner_index, self.net_index, self.type, self.first_bit, self.last_bit,
         self.net_first_bit, at, length) = row
        self.path = bulk.text[at:at + length]

    def __getattr__(self, name):
        if name == "properties":
            self.properties = self._bulk.properties(self._values)
            return self.properties
        if name == "name":
            named = (value for key, value in self.properties.items()
                     if key.upper() == "PIN" and isinstance(value, str) and value)
            self.name = next(named, f"N_{self.index}")
            return self.name
        raise AttributeError(name)

    def __repr__(self):
        return f"<kivo.Pin {self.index} {self.path!r}>"


class MacroPin(Pin):
    """A pin of a macro; its `type` is 0: the file does not hold it."""

    _record, _get, _kind = _MacroPinRecord, "macro_pin", 5

    def instance(self) -> Macro:
        """The macro that it belongs to."""
        return self._design.macro(self.owner_index)


class Instance(_Object):
    """A leaf of the design. `file` is the sheet that it stands on."""

    _record: type[ctypes.Structure] = _InstanceRecord
    _get, _kind = "instance", 0
    _pin = Pin

    file: str
    timing_index: int

    def __init__(self, design, record):
        super().__init__(design, record)
        self.file, self.timing_index = record.file_path.text(), record.timing_index

    def pins(self) -> Iterator[Pin]:
        """Its pins."""
        return self._design._walk(self._pin, f"pin_of_{self._get}", self.index)


class Macro(Instance):
    """An instance that stands for a sheet. Its pins are macro pins, with indexes of their own."""

    _record, _get, _kind = _MacroRecord, "macro", 1
    _pin = MacroPin


class Design:
    """A loaded design, from load(). `errors`, `warnings` and `time_step` are those of its run;
    `path` is what was loaded."""

    _loaded = None  # the one that libkvi holds

    def __init__(self, path: Path):
        self._kvi = _library()
        self._records = {kind: POINTER(kind._record)()
                         for kind in (Net, Instance, Pin, Macro, MacroPin)}
        Design._loaded = None
        self.path = os.fspath(path)
        status = c_int32()
        self._kvi.kvi_load(os.fsencode(path), byref(status))
        if status.value != 0:
            raise Error(self._message(), status.value)
        Design._loaded = self
        self.errors = self._kvi.kvi_get_nb_of_errors()
        self.warnings = self._kvi.kvi_get_nb_of_warnings()
        self.time_step = self._kvi.kvi_get_time_step()

    def close(self):
        """Gives the design back. What was read of it stays."""
        if Design._loaded is self:
            self._kvi.kvi_unload()
            Design._loaded = None
        for kind, record in self._records.items():
            getattr(self._kvi, f"kvi_free_{kind._get}_record")(byref(record))

    def __enter__(self):
        return self

    def __exit__(self, *exception):
        self.close()

    def __del__(self):
        if hasattr(self, "_records"):
            self.close()

    def nets(self) -> Iterator[Net]:
        """All flat nets: a bus, then its members."""
        return self._walk(Net, "net")

    def instances(self) -> Iterator[Instance]:
        """All leaves."""
        return self._walk(Instance, "instance")

    def macros(self) -> Iterator[Macro]:
        """All instances that stand for sheets."""
        return self._walk(Macro, "macro")

    def pins(self) -> Iterator[Pin]:
        """All pins of the leaves, read at once."""
        self._check()
        bulk = _Bulk(self._kvi)
        self._check()
        for index, (row, values) in enumerate(zip(bulk.pins, bulk.values), 1):
            yield _BulkPin(self, index, row, values, bulk)

    def net(self, which: int | str) -> Net:
        """The net of an index, or of a path, its own or that of a net joined into it ("/XR/CKB",
        "xr.ckb"); IndexError or KeyError when there is none. Likewise the next four."""
        return self._one(Net, which)

    def instance(self, which: int | str) -> Instance:
        return self._one(Instance, which)

    def macro(self, which: int | str) -> Macro:
        return self._one(Macro, which)

    def pin(self, which: int | str) -> Pin:
        return self._one(Pin, which)

    def macro_pin(self, which: int | str) -> MacroPin:
        return self._one(MacroPin, which)

    def to_dict(self) -> dict[str, Any]:
        """The whole design as dictionaries and lists: what `kvdump --json` writes."""
        self._check()
        length = c_int64()
        text = self._kvi.kvi_get_json(byref(length))
        if not text:
            raise MemoryError
        self._check()
        return json.loads(ctypes.string_at(text, length.value))

    def _one(self, kind, which):
        if isinstance(which, int):
            return self._read(kind, which)
        self._check()
        path = which.encode("latin-1", "replace")
        index = self._kvi.kvi_find(kind._kind, len(path), path)
        if index == 0:
            raise KeyError(which)
        return self._read(kind, index)

    def _place(self, thing):
        self._check()
        place = _Place()
        self._kvi.kvi_get_place(thing._kind, thing.index, byref(place))
        return place

    def _message(self):
        return os.fsdecode(self._kvi.kvi_load_error())

    def _check(self):
        if Design._loaded is not self:
            raise Error("the design is closed")
        message = self._message()
        if message:
            raise Error(message)

    def _read(self, kind, index):
        self._check()
        record = self._records[kind]
        if record:
            record.contents.self_id = 0
        if 1 <= index < 1 << 31:
            getattr(self._kvi, f"kvi_get_{kind._get}_record")(index, byref(record))
        if not record or index < 1 or record.contents.self_id != index:
            self._check()  # the file may have been written again
            raise IndexError(f"no {kind._get.replace('_', ' ')} {index}")
        return kind(self, record.contents)

    def _walk(self, kind, what, *owner):
        self._check()
        index = c_int32()
        getattr(self._kvi, f"kvi_get_first_{what}")(*owner, byref(index))
        step = getattr(self._kvi, f"kvi_get_next_{what}")
        while index.value:
            yield self._read(kind, index.value)
            step(byref(index))
        self._check()

    def _chain(self, net, direction):
        self._check()
        index, pin_type = c_int32(), c_int16()
        first = getattr(self._kvi, f"kvi_get_first_pin_{direction}_of_net")
        step = getattr(self._kvi, f"kvi_get_next_pin_{direction}_of_net")
        first(net, byref(index), byref(pin_type))
        while index.value:
            yield self._read(Pin, index.value)
            step(byref(index), byref(pin_type))
        self._check()


def load(path: Path) -> Design:
    """The design of the directory `path`, or of the design file `path`. Raises Error, with what is
    wrong, when there is none or it is damaged."""
    return Design(path)


def diff(old: Union[Path, Design], new: Union[Path, Design]) -> list[Change]:
    """What changed electrically from one design to another, each a design, its directory or its
    file: the changes that `kvdiff --json` writes. Raises Error when one cannot be read."""
    kvi = _library()
    length = c_int64()
    paths = [os.fsencode(each.path if isinstance(each, Design) else each) for each in (old, new)]
    text = kvi.kvi_get_difference(*paths, byref(length))
    if not text:
        raise Error(os.fsdecode(kvi.kvi_difference_error()))
    return json.loads(ctypes.string_at(text, length.value))["changes"]


def _candidates():
    named = os.environ.get("KIVO_LIBKVI")
    if named:
        yield named
        return
    parents = pathlib.Path(__file__).resolve().parents
    if len(parents) > 3:  # PREFIX/lib/python3/dist-packages/kivo.py
        for pattern in ("lib*/libkvi.so.1", "lib/*/libkvi.so.1"):
            yield from map(str, sorted(parents[3].glob(pattern)))
    yield "libkvi.so.1"


def _check_sizes(kvi):
    """The structures here are those of the library, or they are not used."""
    for name, size in (("net", ctypes.sizeof(_NetRecord)), ("pin", ctypes.sizeof(_PinRecord)),
                       ("instance", ctypes.sizeof(_InstanceRecord)),
                       ("macro", ctypes.sizeof(_MacroRecord)),
                       ("macro_pin", ctypes.sizeof(_MacroPinRecord)),
                       ("property", ctypes.sizeof(_Property)), ("place", ctypes.sizeof(_Place)),
                       ("pin_row", _Bulk._PIN.size), ("value_row", _Bulk._VALUE.size)):
        if kvi.kvi_get_size_of(name.encode()) != size:
            raise Error(f"libkvi and this module differ in the structure {name}")


_loaded: ctypes.CDLL | None = None


def _library() -> ctypes.CDLL:
    """libkvi, loaded at the first use."""
    global _loaded
    if _loaded is not None:
        return _loaded
    reasons = []
    for candidate in _candidates():
        try:
            kvi = ctypes.CDLL(candidate)
            break
        except OSError as error:
            reasons.append(str(error))
    else:
        raise Error("libkvi is not found: " + "; ".join(reasons))
    _check_sizes(kvi)
    kvi.kvi_load_error.restype = kvi.kvi_difference_error.restype = c_char_p
    kvi.kvi_get_json.restype = kvi.kvi_get_difference.restype = ctypes.c_void_p
    kvi.kvi_get_time_step.restype = c_float
    _loaded = kvi
    return kvi
