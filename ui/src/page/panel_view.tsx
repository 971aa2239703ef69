// A panel from its description.
import { useRef, useState } from "preact/hooks";
import { ControlView } from "./controls";
import type { Act } from "./field";
import type { Control, LayoutNode, PageMessage, WindowInfo } from "./protocol";
import { placeKey, type PanelState } from "./state";

interface NodeProps {
  panel: PanelState;
  node: LayoutNode;
  act: Act;
}

function controlOf(panel: PanelState, node: LayoutNode): Control | undefined {
  return node.kind === "control" ? panel.controls.get(placeKey(node)) : undefined;
}

function isVisible(panel: PanelState, node: LayoutNode): boolean {
  return node.kind === "control"
    ? (controlOf(panel, node)?.visible ?? false)
    : node.children.some((child) => isVisible(panel, child));
}

function Children({ panel, nodes, act }: { panel: PanelState; nodes: LayoutNode[]; act: Act }) {
  return (
    <>
      {nodes.map((child, index) => (
        <NodeView key={index} panel={panel} node={child} act={act} />
      ))}
    </>
  );
}

function captionOf(node: LayoutNode): string {
  return node.kind === "control" ? node.control : node.caption;
}

function Tabs({ panel, nodes, act }: { panel: PanelState; nodes: LayoutNode[]; act: Act }) {
  const [chosen, setChosen] = useState(0);
  const bar = useRef<HTMLDivElement>(null);
  const at = Math.min(chosen, nodes.length - 1);
  const shown = nodes[at];
  const id = (index: number) => `${panel.name}-tab-${captionOf(nodes[index]!)}`;
  const onKeyDown = (event: KeyboardEvent) => {
    const step = event.key === "ArrowRight" ? 1 : event.key === "ArrowLeft" ? nodes.length - 1 : 0;
    if (step !== 0) {
      event.preventDefault();
      const next = (at + step) % nodes.length;
      setChosen(next);
      bar.current?.querySelectorAll<HTMLElement>("button")[next]?.focus();
    }
  };
  return (
    <div class="tabs">
      <div role="tablist" class="tab-list" ref={bar} onKeyDown={onKeyDown}>
        {nodes.map((node, index) => (
          <button
            type="button"
            key={index}
            id={id(index)}
            role="tab"
            aria-selected={index === at}
            tabIndex={index === at ? 0 : -1}
            onClick={() => setChosen(index)}
          >
            {captionOf(node)}
          </button>
        ))}
      </div>
      <div role="tabpanel" class="column" aria-labelledby={shown && id(at)} key={at}>
        {shown && (shown.kind === "control" ? <NodeView panel={panel} node={shown} act={act} /> : <Stack panel={panel} nodes={shown.children} act={act} />)}
      </div>
    </div>
  );
}

// A row of nothing but labels right above a list holds the list's column headings.
function isHeadings(panel: PanelState, node: LayoutNode, below: LayoutNode | undefined): boolean {
  return (
    node.kind === "row" &&
    below !== undefined &&
    controlOf(panel, below)?.kind === "list_box" &&
    node.children.every((child) => controlOf(panel, child)?.kind === "label")
  );
}

interface Group {
  shape: "frames" | "headed" | "alone";
  nodes: LayoutNode[];
}

// What stands together in a column: frames share the width where there is enough of it, headings belong to their list.
function groupsOf(panel: PanelState, nodes: LayoutNode[]): Group[] {
  const groups: Group[] = [];
  nodes.forEach((node, index) => {
    const last = groups[groups.length - 1];
    if (last?.shape === "headed" && last.nodes.length === 1) {
      last.nodes.push(node);
    } else if (isHeadings(panel, node, nodes[index + 1])) {
      groups.push({ shape: "headed", nodes: [node] });
    } else if (node.kind === "frame" && last?.shape === "frames") {
      last.nodes.push(node);
    } else {
      groups.push({ shape: node.kind === "frame" ? "frames" : "alone", nodes: [node] });
    }
  });
  return groups;
}

function Stack({ panel, nodes, act }: { panel: PanelState; nodes: LayoutNode[]; act: Act }) {
  return (
    <>
      {groupsOf(panel, nodes).map(({ shape, nodes: members }, index) =>
        members.length === 1 ? (
          <NodeView key={index} panel={panel} node={members[0]!} act={act} />
        ) : (
          <div class={shape} key={index}>
            <Children panel={panel} nodes={members} act={act} />
          </div>
        ),
      )}
    </>
  );
}

const fieldKinds = new Set(["text_box", "indicator", "combo_box"]);

// Rows of labels or of fields alone have a shape of their own.
function rowClass(panel: PanelState, nodes: LayoutNode[]): string {
  if (nodes.every((node) => controlOf(panel, node)?.kind === "label")) {
    return "row row-labels";
  }
  const fields = nodes.every((node) => {
    const control = controlOf(panel, node);
    return control !== undefined && fieldKinds.has(control.kind) && control.caption !== "";
  });
  return fields ? "row row-fields" : "row";
}

function NodeView({ panel, node, act }: NodeProps) {
  if (node.kind === "control") {
    const control = controlOf(panel, node);
    return control ? <ControlView panel={panel.name} control={control} act={act} /> : null;
  }
  if (!isVisible(panel, node)) {
    return null;
  }
  switch (node.kind) {
    case "tabs":
      return <Tabs panel={panel} nodes={node.children} act={act} />;
    case "frame":
      return (
        <fieldset class="frame">
          {node.caption !== "" && <legend>{node.caption}</legend>}
          <div class="column">
            <Stack panel={panel} nodes={node.children} act={act} />
          </div>
        </fieldset>
      );
    case "column":
      return (
        <div class="column">
          <Stack panel={panel} nodes={node.children} act={act} />
        </div>
      );
    case "board":
      return (
        <div class="board" style={{ "--columns": node.columns }}>
          <Children panel={panel} nodes={node.children} act={act} />
        </div>
      );
    case "row":
      return (
        <div class={rowClass(panel, node.children)}>
          <Children panel={panel} nodes={node.children} act={act} />
        </div>
      );
  }
}

interface PanelProps {
  window: WindowInfo;
  panel: PanelState;
  front: boolean;
  blocked: boolean; // another panel must be done with first
  over: boolean; // this is that panel
  stale: boolean;
  send: (message: PageMessage) => void;
}

export function PanelView({ window, panel, front, blocked, over, stale, send }: PanelProps) {
  const act: Act = (control, event, input) =>
    send({
      type: "control",
      panel: panel.name,
      control: control.control,
      ...(control.index === undefined ? {} : { index: control.index }),
      event,
      ...input,
    });
  const titleId = `${panel.name}-title`;
  return (
    <section
      class={`panel${front ? " panel-front" : ""}${over ? " panel-over" : ""}`}
      data-panel={panel.name}
      aria-labelledby={titleId}
      inert={blocked}
    >
      <header>
        <h2 id={titleId}>{window.title}</h2>
        {stale && <span class="stale-note">Values may be old</span>}
        <button
          type="button"
          class="minimise"
          aria-label={`Minimise ${window.title}`}
          title="Minimise"
          onClick={() => send({ type: "minimise", panel: panel.name })}
        />
      </header>
      <div class="panel-body column">
        <NodeView panel={panel} node={panel.layout} act={act} />
      </div>
    </section>
  );
}
