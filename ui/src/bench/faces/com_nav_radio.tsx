import type { JSX } from "preact";

import { DoubleKnob, PushButton, Rotary, type Bench } from "../controls";
import type { Values } from "../protocol";
import { flagOf, textOf } from "../store";
import { Row, Screen, Unit } from "../unit";
import type { Face, FaceProps } from "./face";

const GHOST = "888.888";

interface HalfProps {
  bench: Bench;
  values: Values;
  half: "com" | "nav";
}

function Half({ bench, values, half }: HalfProps): JSX.Element {
  const name = half.toUpperCase();
  const standby = textOf(values, `${half}Standby`);
  return (
    <>
      <Screen name={`${half}Active`} caption={`${name} use`} text={textOf(values, `${half}Active`)} ghost={GHOST} />
      <PushButton bench={bench} name={`${half}Swap`} caption="⇄" label={`Swap ${name} frequencies`} />
      <Screen name={`${half}Standby`} caption="Standby" text={standby} ghost={GHOST} />
      <DoubleKnob
        bench={bench}
        outer={{ name: `${half}Coarse`, label: `${name} standby, coarse` }}
        inner={{ name: `${half}Fine`, label: `${name} standby, fine` }}
        value={standby}
      />
    </>
  );
}

function ComNavRadio({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  return (
    <Unit label={`COM and NAV radio, id ${instrument.id}`} title="COM / NAV">
      <Row>
        <span class="unit-halves">
          <Half bench={bench} values={values} half="com" />
          <Half bench={bench} values={values} half="nav" />
        </span>
        <Rotary bench={bench} name="on" label="Power" positions={["OFF", "ON"]} first={0} position={flagOf(values, "on") ? 1 : 0} />
      </Row>
    </Unit>
  );
}

export const comNavRadioFace: Face = { component: ComNavRadio, size: () => "wide" };
