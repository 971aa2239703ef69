// The messages between the program and its page; docs/panels.md tells them.

export type ControlKind =
  | "label"
  | "text_box"
  | "check_box"
  | "option_button"
  | "combo_box"
  | "list_box"
  | "slider"
  | "progress_bar"
  | "command_button"
  | "indicator"
  | "picture";

export interface Place {
  control: string;
  index?: number;
}

export interface ControlState extends Place {
  caption: string;
  text: string;
  toolTip: string;
  value: number;
  visible: boolean;
  enabled: boolean;
  colour: number;
  items?: string[];
  minimum?: number;
  maximum?: number;
}

export interface Control extends ControlState {
  kind: ControlKind;
  editable?: boolean;
  group?: string;
  widget?: string;
}

export type LayoutNode =
  | ({ kind: "control" } & Place)
  | { kind: "column" | "row" | "frame" | "tabs"; caption: string; children: LayoutNode[] }
  | { kind: "board"; caption: string; columns: number; children: LayoutNode[] };

export interface WindowInfo {
  name: string;
  title: string;
  state: "shown" | "minimised" | "hidden";
  modal: boolean;
}

export interface PanelDescription extends WindowInfo {
  layout: LayoutNode;
  controls: Control[];
}

export interface Box {
  id: number;
  kind: "message" | "question" | "input";
  text: string;
  preset: string;
}

export type ServerMessage =
  | { type: "snapshot"; program: string; panels: PanelDescription[]; boxes: Box[] }
  | { type: "panel"; panel: PanelDescription }
  | { type: "windows"; windows: WindowInfo[] }
  | { type: "changes"; panel: string; title?: string; controls: ControlState[] }
  | { type: "boxes"; boxes: Box[] }
  | { type: "beat"; count: number };

export type ControlEventName = "click" | "double_click" | "change";

export type PageMessage =
  | ({ type: "control"; panel: string; event: ControlEventName; value?: number; text?: string } & Place)
  | { type: "activate" | "minimise"; panel: string }
  | { type: "answer"; id: number; answer: "ok" | "yes" | "no" | "cancel"; text?: string };
