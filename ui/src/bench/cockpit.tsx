import type { JSX } from "preact";
import { useState } from "preact/hooks";

import { faceOf, groupOf, placeOf, type Group } from "./faces";
import type { Instrument, LineLayout } from "./protocol";
import { flagOf, numberOf, textOf, useDeviceValues, useLineValues, useTopic, type Store } from "./store";

const HIGHEST_LEVEL = 15;
const FAULTS = [
  ["none", "no fault"],
  ["mute", "never answers"],
  ["deaf", "neither obeys nor answers"],
  ["drop_reply", "its reports get lost"],
  ["corrupt_byte", "its reports arrive damaged"],
  ["half_report", "its reports break off"],
  ["wrong_id", "answers with a wrong id"],
  ["wrong_type", "answers with a wrong type"],
  ["late_reply", "answers too late"],
  ["noise", "noise before its reports"],
] as const;

interface Shared {
  store: Store;
  command(line: string): void;
}

/** Whether a line is plugged and how long ago something came over it. */
function lineState(plugged: boolean, bytesPerSecond: number): [state: string, text: string] {
  if (!plugged) return ["unplugged", "unplugged"];
  return bytesPerSecond > 0 ? ["live", "live"] : ["quiet", "quiet"];
}

function Figure({ name, value, bad }: { name: string; value: number; bad?: boolean }): JSX.Element {
  return (
    <div class={bad && value > 0 ? "figure figure-bad" : "figure"}>
      <dd data-figure={name}>{value.toLocaleString("en-GB")}</dd>
      <dt>{name}</dt>
    </div>
  );
}

function Line({ line, store, command }: Shared & { line: LineLayout }): JSX.Element {
  const values = useLineValues(store, line.port);
  const plugged = flagOf(values, "plugged");
  const [state, stateText] = lineState(plugged, numberOf(values, "bytesPerSecond"));
  return (
    <section class="line" data-line={line.port} data-state={state}>
      <h2>
        <span class="lamp" aria-hidden="true" />
        COM{line.port} <small>{line.role}</small>
      </h2>
      <p class="line-state">{line.simulated ? stateText : `${stateText}, not simulated`}</p>
      <dl>
        <Figure name="bytes/s" value={numberOf(values, "bytesPerSecond")} />
        <Figure name="frames/s" value={numberOf(values, "framesPerSecond")} />
        <Figure name="frames" value={numberOf(values, "frames")} />
        <Figure name="reports" value={numberOf(values, "reports")} />
        <Figure name="bad frames" value={numberOf(values, "badFrames")} bad />
        <Figure name="stray bytes" value={numberOf(values, "strayBytes")} bad />
      </dl>
      <button type="button" onClick={() => command(`${plugged ? "unplug" : "plug"} ${line.port}`)}>
        {plugged ? "Pull the plug" : "Plug in"}
      </button>
    </section>
  );
}

function Details({ instrument, store, command }: Shared & { instrument: Instrument }): JSX.Element {
  const values = useDeviceValues(store, instrument.key);
  const field = `fault-${instrument.key}`;
  return (
    <div class="details">
      <p>
        {instrument.typeName.trim()}, model {instrument.model}, version {instrument.version}
      </p>
      {instrument.needles.map(
        (needle, index) =>
          needle.title !== "" && (
            <p>
              Needle {index + 1}: {needle.title} {needle.sequence}, plate “{needle.plate}”
            </p>
          ),
      )}
      <label for={field}>Fault</label>
      <select
        id={field}
        value={textOf(values, "fault")}
        onChange={(event) => command(`fault ${instrument.key} ${event.currentTarget.value}`)}
      >
        {FAULTS.map(([name, text]) => (
          <option value={name}>{text}</option>
        ))}
      </select>
    </div>
  );
}

function InstrumentTile({ instrument, store, command }: Shared & { instrument: Instrument }): JSX.Element {
  const values = useDeviceValues(store, instrument.key);
  const [open, setOpen] = useState(false);
  const face = faceOf(instrument.face);
  const Drawing = face.component;
  const lit = flagOf(values, "lit");
  const glow = lit ? 0.25 + (0.75 * numberOf(values, "level")) / HIGHEST_LEVEL : 0;
  const fault = textOf(values, "fault");
  return (
    <article
      class={`instrument ${face.size(instrument)}`}
      data-instrument={instrument.key}
      data-type={instrument.type}
      data-lit={lit}
      data-power={flagOf(values, "power")}
      style={{ "--glow": glow.toFixed(3) }}
    >
      <Drawing instrument={instrument} values={values} command={command} />
      <button type="button" class="name-plate" aria-expanded={open} onClick={() => setOpen(!open)}>
        {instrument.id > 0 ? (
          <>
            <b>{instrument.id}</b> type {instrument.type}
          </>
        ) : (
          <>
            <b>COM{instrument.port}</b> {instrument.typeName}
          </>
        )}
        {flagOf(values, "calibrating") && <em class="note">finding zero</em>}
        {fault !== "" && fault !== "none" && <em class="note note-bad">{fault.replace("_", " ")}</em>}
      </button>
      {open && <Details instrument={instrument} store={store} command={command} />}
    </article>
  );
}

function Answer({ store }: { store: Store }): JSX.Element | null {
  useTopic(store, "answer");
  return store.answer === "" || store.answer === "ok" ? null : (
    <p class="answer" role="status">
      {store.answer}
    </p>
  );
}

const GROUPS: [Group, string][] = [
  ["flight", "Flight instruments"],
  ["stack", "Radio stack"],
  ["engine", "Gauges"],
  ["other", "Clocks and trim"],
  ["yoke", "Yokes"],
  ["io", "Switchboards"],
];

function membersOf(instruments: Instrument[], group: Group): Instrument[] {
  return instruments
    .filter((instrument) => groupOf(instrument.face) === group)
    .sort((one, other) => placeOf(one.face) - placeOf(other.face) || one.port - other.port || one.id - other.id);
}

export function Cockpit({ store, command }: Shared): JSX.Element {
  useTopic(store, "layout");
  useTopic(store, "connected");
  return (
    <div class={store.connected ? "cockpit" : "cockpit stale"} data-connected={store.connected}>
      <header>
        <h1>Virtual cockpit</h1>
        <p class="link" role="status">
          <span class="lamp" aria-hidden="true" />
          {store.connected ? "connected to the bench" : "no connection to the bench, trying again"}
        </p>
        <Answer store={store} />
      </header>
      <div class="lines">
        {store.lines.map((line) => (
          <Line key={line.port} line={line} store={store} command={command} />
        ))}
      </div>
      <main class="panel">
        {GROUPS.map(([group, title]) => {
          const members = membersOf(store.instruments, group);
          return (
            members.length > 0 && (
              <section class={`group group-${group}`} key={group} aria-label={title}>
                {members.map((instrument) => (
                  <InstrumentTile key={instrument.key} instrument={instrument} store={store} command={command} />
                ))}
              </section>
            )
          );
        })}
        {store.connected && store.instruments.length === 0 && <p class="empty">No instruments in this configuration.</p>}
      </main>
    </div>
  );
}
