// The control program's page: the open panels, their task bar, the message boxes and the state of the connection.
import { render } from "preact";
import { useEffect, useMemo, useRef } from "preact/hooks";
import { BoxView } from "./box_view";
import { colourClass, colourStyle } from "./colour";
import { isStale, linkOf, usePageLink } from "./page_link";
import { PanelView } from "./panel_view";
import type { PageMessage, WindowInfo } from "./protocol";
import type { PageState, PanelState } from "./state";
import "./page.css";
import "./board.css";
import "./force_curve.css";

type Send = (message: PageMessage) => void;

// Keeps names in the order of their first appearance, so that nothing jumps about when another panel comes to the front.
function useSteadyOrder(windows: WindowInfo[]): WindowInfo[] {
  const known = useRef<string[]>([]);
  return useMemo(() => {
    const open = new Map(windows.map((window) => [window.name, window]));
    known.current = known.current.filter((name) => open.has(name));
    for (const name of open.keys()) {
      if (!known.current.includes(name)) {
        known.current.push(name);
      }
    }
    return known.current.map((name) => open.get(name)!);
  }, [windows]);
}

// What a minimised panel goes on telling: its indicators, but for those of whole boards.
function Lamps({ panel }: { panel?: PanelState }) {
  const lamps = [...(panel?.controls.values() ?? [])].filter(
    (control) => control.kind === "indicator" && control.visible && control.index === undefined,
  );
  return (
    <span class="lamps">
      {lamps.map((lamp) => (
        <span
          key={lamp.control}
          class={`lamp${colourClass(lamp.colour)}`}
          style={colourStyle(lamp.colour)}
          data-lamp={lamp.control}
          title={lamp.caption === "" ? lamp.text : `${lamp.caption}: ${lamp.text}`}
        >
          {lamp.text}
        </span>
      ))}
    </span>
  );
}

interface TaskBarProps {
  windows: WindowInfo[];
  panels: ReadonlyMap<string, PanelState>;
  front?: string;
  rests: boolean;
  send: Send;
}

function TaskBar({ windows, panels, front, rests, send }: TaskBarProps) {
  return (
    <nav class="task-bar" aria-label="Open panels" inert={rests}>
      {windows.map((window) => (
        <button
          type="button"
          key={window.name}
          data-task={window.name}
          class={`task task-${window.state}`}
          aria-current={window.name === front ? "true" : undefined}
          title={window.state === "minimised" ? `Restore ${window.title}` : `Bring ${window.title} to the front`}
          onClick={() => send({ type: "activate", panel: window.name })}
        >
          <span class="task-title">{window.title}</span>
          {window.state === "minimised" && <span class="task-note">minimised</span>}
          {window.state === "minimised" && <Lamps panel={panels.get(window.name)} />}
        </button>
      ))}
    </nav>
  );
}

function Head({ state }: { state: PageState }) {
  const link = linkOf(state);
  return (
    <header class="page-head">
      <h1>{state.program === "" ? "Cockpit" : state.program}</h1>
      <span class={`link link-${link.kind}`} role="status" data-link={link.kind}>
        {link.text}
      </span>
    </header>
  );
}

function Banner({ state }: { state: PageState }) {
  if (!isStale(state) || state.program === "") {
    return null;
  }
  return (
    <p class="banner" role="alert">
      {state.socket === "open"
        ? "The program does not answer. The values below may be old."
        : "The connection to the program is lost. The values below are old. Connecting again by itself …"}
    </p>
  );
}

// What stands there when no panel is shown: the way back to those that are minimised.
function Empty({ state, windows, send }: { state: PageState; windows: WindowInfo[]; send: Send }) {
  if (state.program === "") {
    return <p class="empty">Connecting to the program …</p>;
  }
  return (
    <div class="empty">
      <p>{windows.length > 0 ? "The program is running. Its panels are minimised." : "No panel is open. The program keeps running."}</p>
      {windows.map((window) => (
        <button type="button" class="restore" key={window.name} onClick={() => send({ type: "activate", panel: window.name })}>
          {window.title}
          <Lamps panel={state.panels.get(window.name)} />
          <span>Show this panel</span>
        </button>
      ))}
    </div>
  );
}

function frontOf(windows: WindowInfo[]): string | undefined {
  return windows.filter((window) => window.state === "shown").pop()?.name;
}

function Panels({ state, windows, modal, send }: { state: PageState; windows: WindowInfo[]; modal?: string; send: Send }) {
  const shown = windows.filter((window) => window.state === "shown" && state.panels.has(window.name));
  const stale = isStale(state);
  const front = frontOf(state.windows);

  // A panel that comes to the front is brought into view.
  useEffect(() => {
    if (front !== undefined) {
      document.querySelector(`[data-panel="${front}"]`)?.scrollIntoView({ block: "nearest" });
    }
  }, [front]);

  return (
    <main class={shown.length > 1 ? "panels panels-several" : "panels"}>
      {shown.map((window) => (
        <PanelView
          key={window.name}
          window={window}
          panel={state.panels.get(window.name)!}
          front={window.name === front}
          blocked={modal !== undefined && window.name !== modal}
          over={window.name === modal}
          stale={stale}
          send={send}
        />
      ))}
      {shown.length === 0 && <Empty state={state} windows={windows} send={send} />}
    </main>
  );
}

// While the panels rest they lose the keyboard; afterwards it goes back to where it was.
function useKeyboardKept(rests: boolean) {
  const last = useRef<HTMLElement>();
  useEffect(() => {
    const note = (event: FocusEvent) => {
      if (event.target instanceof HTMLElement && !event.target.closest("[data-box]")) {
        last.current = event.target;
      }
    };
    document.addEventListener("focusin", note);
    return () => document.removeEventListener("focusin", note);
  }, []);
  useEffect(() => {
    if (!rests && document.activeElement === document.body && last.current?.isConnected) {
      last.current.focus({ preventScroll: true });
    }
  }, [rests]);
}

function Page() {
  const [state, send] = usePageLink();
  const windows = useSteadyOrder(state.windows);
  const stale = isStale(state);
  // While a modal panel is open only the front one of these can be worked.
  const modal = frontOf(state.windows.filter((window) => window.modal));
  const top = state.boxes[state.boxes.length - 1];
  const canWork = state.socket === "open" && top === undefined;

  useKeyboardKept(!canWork);

  useEffect(() => {
    const program = state.program === "" ? "Cockpit" : state.program;
    document.title = top === undefined ? program : `(!) ${program}`;
  }, [state.program, top === undefined]);

  return (
    <div class={stale ? "page stale" : "page"} data-stale={stale}>
      <Head state={state} />
      <Banner state={state} />
      <div inert={!canWork}>
        <TaskBar windows={windows} panels={state.panels} front={frontOf(state.windows)} rests={modal !== undefined} send={send} />
        <Panels state={state} windows={windows} modal={modal} send={send} />
      </div>
      {top && <BoxView key={top.id} box={top} more={state.boxes.length - 1} linked={state.socket === "open"} send={send} />}
    </div>
  );
}

render(<Page />, document.getElementById("root")!);
