// A panel from its description.
import { useState } from "preact/hooks";
import { ControlView, type Act } from "./controls";
import type { LayoutNode, PageMessage, WindowInfo } from "./protocol";
import { placeKey, type PanelState } from "./state";

interface NodeProps {
  panel: PanelState;
  node: LayoutNode;
  act: Act;
}

function isVisible(panel: PanelState, node: LayoutNode): boolean {
  return node.kind === "control"
    ? (panel.controls.get(placeKey(node))?.visible ?? false)
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

function Tabs({ panel, nodes, act }: { panel: PanelState; nodes: LayoutNode[]; act: Act }) {
  const [chosen, setChosen] = useState(0);
  const captions = nodes.map((node) => (node.kind === "control" ? node.control : node.caption));
  const shown = nodes[Math.min(chosen, nodes.length - 1)];
  return (
    <div class="tabs">
      <div role="tablist" class="tab-list">
        {captions.map((caption, index) => (
          <button type="button" key={index} role="tab" aria-selected={index === chosen} onClick={() => setChosen(index)}>
            {caption}
          </button>
        ))}
      </div>
      <div role="tabpanel" class="column">
        {shown && shown.kind !== "control" && <Children panel={panel} nodes={shown.children} act={act} />}
      </div>
    </div>
  );
}

function NodeView({ panel, node, act }: NodeProps) {
  if (node.kind === "control") {
    const control = panel.controls.get(placeKey(node));
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
          <Children panel={panel} nodes={node.children} act={act} />
        </fieldset>
      );
    default:
      return (
        <div class={node.kind}>
          <Children panel={panel} nodes={node.children} act={act} />
        </div>
      );
  }
}

export function PanelView(props: {
  window: WindowInfo;
  panel: PanelState;
  front: boolean;
  send: (message: PageMessage) => void;
}) {
  const { window, panel, send } = props;
  const act: Act = (control, event, input) =>
    send({
      type: "control",
      panel: panel.name,
      control: control.control,
      ...(control.index === undefined ? {} : { index: control.index }),
      event,
      ...input,
    });
  return (
    <section class={props.front ? "panel panel-front" : "panel"} data-panel={panel.name} aria-label={window.title}>
      <header>
        <h2>{window.title}</h2>
        <button
          type="button"
          class="minimise"
          aria-label={`Minimise ${window.title}`}
          title="Minimise"
          onClick={() => send({ type: "minimise", panel: panel.name })}
        >
          –
        </button>
      </header>
      <div class="panel-body column">
        <NodeView panel={panel} node={panel.layout} act={act} />
      </div>
    </section>
  );
}
