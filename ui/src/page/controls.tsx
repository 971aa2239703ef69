// The controls by their kind. The element that bears data-control is the one a user reads or works.
import { Component } from "preact";
import type { JSX } from "preact";
import { useEffect, useRef } from "preact/hooks";
import { useDraft } from "./draft";
import { elementId, Field, marks, nameOf, tip, type ControlProps } from "./field";
import { ListView } from "./list_view";
import { ProgressView, Readout, TextView } from "./readouts";
import { widgets } from "./widgets";
import { colourClass, colourStyle } from "./colour";
import type { Control } from "./protocol";

// While a slider is dragged its positions go out no faster than the program shows them.
const dragSendMs = 50;

// What is being typed goes out with Enter or when the field is left.
function EditBox(props: ControlProps) {
  const { control, act } = props;
  const id = elementId(props);
  const draft = useDraft(control, control.text);
  const commit = () => {
    if (draft.value !== control.text) {
      act(control, "change", { text: draft.value });
      draft.sent();
    } else {
      draft.drop();
    }
  };
  return (
    <Field id={id} label={control.caption}>
      <input
        id={id}
        type="text"
        autocomplete="off"
        spellcheck={false}
        {...marks(control)}
        {...nameOf(control)}
        title={tip(control)}
        disabled={!control.enabled}
        value={draft.value}
        onInput={(event) => draft.edit(event.currentTarget.value)}
        onBlur={commit}
        onKeyDown={(event) => {
          if (event.key === "Enter") {
            commit();
          } else if (event.key === "Escape") {
            draft.drop();
          }
        }}
      />
    </Field>
  );
}

function TextBoxView(props: ControlProps) {
  return props.control.editable ? <EditBox {...props} /> : <Readout {...props} />;
}

function ChoiceView(props: ControlProps) {
  const { control, act } = props;
  const isOption = control.kind === "option_button";
  return (
    <label class="choice" title={tip(control)}>
      <input
        type={isOption ? "radio" : "checkbox"}
        name={isOption ? `${props.panel}-${control.group}` : undefined}
        {...marks(control)}
        {...nameOf(control)}
        checked={control.value === 1}
        disabled={!control.enabled}
        onChange={(event) => act(control, "click", { value: event.currentTarget.checked ? 1 : 0 })}
      />
      <span>{control.caption}</span>
    </label>
  );
}

function ComboView(props: ControlProps) {
  const { control, act } = props;
  const id = elementId(props);
  return (
    <Field id={id} label={control.caption}>
      <select
        id={id}
        {...marks(control)}
        {...nameOf(control)}
        title={tip(control)}
        disabled={!control.enabled}
        value={String(control.value)}
        onChange={(event) => act(control, "change", { value: Number(event.currentTarget.value) })}
      >
        {control.value < 0 && <option value="-1" />}
        {(control.items ?? []).map((item, index) => (
          <option key={index} value={String(index)}>
            {item}
          </option>
        ))}
      </select>
    </Field>
  );
}

// Calls `send` at most every dragSendMs while a drag goes on; `flush` sends the last position at once.
function useDragSender(send: (value: number) => void) {
  const timer = useRef<number>();
  const waiting = useRef<number>();
  const sendLatest = useRef(send);
  sendLatest.current = send;
  const flush = () => {
    window.clearTimeout(timer.current);
    timer.current = undefined;
    if (waiting.current !== undefined) {
      sendLatest.current(waiting.current);
      waiting.current = undefined;
    }
  };
  useEffect(() => () => window.clearTimeout(timer.current), []);
  return {
    flush,
    move(value: number) {
      waiting.current = value;
      timer.current ??= window.setTimeout(flush, dragSendMs);
    },
  };
}

// How far a position is along its slider.
function shareOf({ minimum = 0, maximum = 0 }: Control, position: number): string {
  return maximum > minimum ? `${(100 * (position - minimum)) / (maximum - minimum)}%` : "0%";
}

function SliderView(props: ControlProps) {
  const { control, act } = props;
  const id = elementId(props);
  const draft = useDraft(control, control.value);
  const sender = useDragSender((value) => act(control, "change", { value }));
  return (
    <Field id={id} label={control.caption} wide>
      <div class="slider">
        <input
          id={id}
          type="range"
          {...marks(control)}
          {...nameOf(control)}
          title={tip(control)}
          disabled={!control.enabled}
          min={control.minimum}
          max={control.maximum}
          value={draft.value}
          style={{ "--share": shareOf(control, draft.value) } as JSX.CSSProperties}
          onInput={(event) => {
            const value = Number(event.currentTarget.value);
            draft.edit(value);
            sender.move(value);
          }}
          onChange={() => {
            sender.flush();
            draft.sent();
          }}
        />
        <output class="slider-value" for={id}>
          {draft.value}
        </output>
      </div>
    </Field>
  );
}

function ButtonView({ control, act }: ControlProps) {
  return (
    <button
      type="button"
      class={`command${colourClass(control.colour)}`}
      style={colourStyle(control.colour)}
      {...marks(control)}
      title={tip(control)}
      disabled={!control.enabled}
      onClick={() => act(control, "click")}
    >
      {control.caption}
    </button>
  );
}

function PictureView({ control, act }: ControlProps) {
  const Widget = widgets[control.widget ?? ""];
  return (
    <div class="picture" {...marks(control)} title={tip(control)}>
      {Widget && <Widget control={control} act={act} />}
    </div>
  );
}

const views: Record<Control["kind"], (props: ControlProps) => JSX.Element> = {
  label: TextView,
  text_box: TextBoxView,
  check_box: ChoiceView,
  option_button: ChoiceView,
  combo_box: ComboView,
  list_box: ListView,
  slider: SliderView,
  progress_bar: ProgressView,
  command_button: ButtonView,
  indicator: Readout,
  picture: PictureView,
};

// Drawn again only when its own control has changed: a run panel changes a dozen fields twenty times a second.
export class ControlView extends Component<ControlProps> {
  shouldComponentUpdate(next: ControlProps) {
    return next.control !== this.props.control;
  }

  render() {
    const View = views[this.props.control.kind];
    return this.props.control.visible ? <View {...this.props} /> : null;
  }
}
