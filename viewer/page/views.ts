/** The views of the page, in the order of their tabs. */

import {ButterflyView} from '../views/ButterflyView';
import {CallTreeView} from '../views/CallTreeView';
import {DifferenceView} from '../views/DifferenceView';
import {FlameView} from '../views/FlameView';
import {FunctionsView} from '../views/FunctionsView';
import {LanesView} from '../views/LanesView';
import {RulerView} from '../views/RulerView';
import {SpanView} from '../views/SpanView';
import {TimelineView} from '../views/TimelineView';
import type {View} from '../views/View';

/** Returns the views of the page; a Worker, which runs the same script, has no use for them. */
export const makeViews = (): readonly View[] =>
    [new RulerView(),
     new TimelineView(),
     new LanesView(),
     new FlameView(),
     new CallTreeView(),
     new FunctionsView(),
     new ButterflyView(),
     new DifferenceView(),
     new SpanView(),
];
