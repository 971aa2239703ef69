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
function isHeadings(panel: PanelState, nodes: LayoutNode[], index: number): boolean {
  const node = nodes[index]!;
  const below = nodes[index + 1];
  return (
    node.kind === "row" &&
    below !== undefined &&
    controlOf(panel, below)?.kind === "list_box" &&
    node.children.every((child) => controlOf(panel, child)?.kind === "label")
  );
}

// Several frames below each other share the width where there is enough of it.
function groupFrames(nodes: LayoutNode[]): LayoutNode[][] {
  const groups: LayoutNode[][] = [];
  for (const node of nodes) {
    const last = groups[groups.length - 1];
    if (node.kind === "frame" && last?.[0]?.kind === "frame") {
      last.push(node);
    } else {
      groups.push([node]);
    }
  }
  return groups;
}

function Stack({ panel, nodes, act }: { panel: PanelState; nodes: LayoutNode[]; act: Act }) {
  return (
    <>
      {groupFrames(nodes).map((group, index) => {
        const node = group[0]!;
        if (group.length > 1) {
          return (
            <div class="frames" key={index}>
              <Children panel={panel} nodes={group} act={act} />
            </div>
          );
        }
        if (isHeadings(panel, nodes, nodes.indexOf(node)) && node.kind !== "control") {
          return (
            <div class="headings" key={index}>
              <Children panel={panel} nodes={node.children} act={act} />
            </div>
          );
        }
        return <NodeView key={index} panel={panel} node={node} act={act} />;
      })}
    </>
  );
}

const readoutKinds = new Set(["text_box", "indicator", "combo_box"]);

// Rows of fields alone line up with each other.
function rowClass(panel: PanelState, nodes: LayoutNode[]): string {
  const fields = nodes.every((node) => {
    const control = controlOf(panel, node);
    return control !== undefined && readoutKinds.has(control.kind) && control.caption !== "";
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
