/** The page's entry, and the Worker's: both run the same script, so that the page holds it once. */

import {serve} from '../document/worker';
import {everything} from '../model/filter';
import {noChoice} from '../model/lanes';
import {Store} from '../views/store';

import {followFragment} from './fragment';
import {Opener} from './Opener';
import {Shell} from './Shell';
import {makeViews} from './views';

/** Starts the page, whose Workers run `script`. */
function start(script: string): void {
  const store = new Store({
    readings: [],
    profile: null,
    baseline: null,
    timechart: null,
    visible: null,
    filter: everything,
    search: '',
    place: -1,
    panel: 'flame',
    lanes: noChoice,
    cursor: null,
    run: null,
    mark: null,
  });
  followFragment(store);
  const opener = new Opener(store, script);
  new Shell(document.body, store, opener, makeViews());
  opener.openEmbedded(document);
}

if (typeof document === 'undefined')
  serve();
else
  start(document.currentScript!.textContent!);
