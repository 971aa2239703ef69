import type { JSX } from "preact";

import { DoubleKnob, Rotary, type Bench } from "../controls";
import type { Values } from "../protocol";
import { numberOf, textOf } from "../store";
import { Row, Screen, Unit } from "../unit";
import type { Face, FaceProps } from "./face";

function Readings({ values }: { values: Values }): JSX.Element {
  return (
    <>
      <Screen name="distance" caption="NM" text={textOf(values, "distance")} ghost="888.8" size="big" />
      <Screen name="speed" caption="KT" text={textOf(values, "speed")} ghost="888.8" size="big" />
      <Screen name="time" caption="MIN" text={textOf(values, "time")} ghost="88" size="big" />
    </>
  );
}

function Switch({ bench, values, positions }: { bench: Bench; values: Values; positions: string[] }): JSX.Element {
  return <Rotary bench={bench} name="rotary" label="Station switch" positions={positions} position={numberOf(values, "rotary")} />;
}

function Dme({ instrument, values, command }: FaceProps): JSX.Element {
  return (
    <Unit label={`DME indicator, id ${instrument.id}`} title="DME">
      <Row>
        <Readings values={values} />
      </Row>
      <Row>
        <Switch bench={{ instrument, command }} values={values} positions={["OFF", "N1", "HLD", "N2"]} />
      </Row>
    </Unit>
  );
}

function BkDme({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  return (
    <Unit label={`DME indicator, id ${instrument.id}`} title="DME">
      <Row>
        <Readings values={values} />
        <Screen name="frequency" caption="Frequency" text={textOf(values, "frequency")} ghost="888.888" />
        <DoubleKnob
          bench={bench}
          outer={{ name: "coarse", label: "DME frequency, coarse" }}
          inner={{ name: "fine", label: "DME frequency, fine" }}
          value={textOf(values, "frequency")}
        />
      </Row>
      <Row>
        <Switch bench={bench} values={values} positions={["RMT", "FREQ", "GS/T"]} />
      </Row>
    </Unit>
  );
}

export const dmeFace: Face = { component: Dme, size: () => "wide" };
export const bkDmeFace: Face = { component: BkDme, size: () => "wide" };
